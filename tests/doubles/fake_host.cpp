#include "base/base_hardware.h"

/// What the host process defines.
BASE_HARDWARE* Hardware = nullptr;
