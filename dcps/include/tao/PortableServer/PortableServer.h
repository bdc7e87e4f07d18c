#pragma once

/// The PortableServer module (the portable object adapter), under the path at which TAO keeps it.
#include <tao/corba.h>

/// Makes sure that the portable object adapter is linked and loaded with the program.
class __attribute__((visibility("default"))) TAO_POA_Initializer {
public:
  /// Returns 0. Any thread, any time, static initialisation included; a second call does nothing.
  static int init();
};

/// Each source file that includes this header makes the call once, while it is being initialised.
[[maybe_unused]] static int TAO_Requires_POA_Initializer = TAO_POA_Initializer::init();
