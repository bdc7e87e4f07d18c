#include "base/base_hardware.h"

/// Defined by the host process.
BASE_HARDWARE* Hardware = nullptr;
