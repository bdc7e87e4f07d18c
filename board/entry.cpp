#include <iostream>

#include "board/hardware.h"

namespace {

/// Loading the library is the host's only way to ask for the object: it is made here, once, and never destroyed.
struct Entry {
  Entry() {
    if (Hardware) {
      std::cerr << "so proxy err" << std::endl;
    } else {
      Hardware = new HARDWARE;
    }
  }
} entry;

}  // namespace
