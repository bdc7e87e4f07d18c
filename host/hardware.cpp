#include "base/base_hardware.h"

/// The global that the library looks for; it is exported from this program.
__attribute__((visibility("default"))) BASE_HARDWARE* Hardware = nullptr;
