#include "base/base_hardware.h"

/// The global variable that the library resolves; exported from this program.
__attribute__((visibility("default"))) BASE_HARDWARE* Hardware = nullptr;
