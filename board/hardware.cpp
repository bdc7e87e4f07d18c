#include "board/hardware.h"

#include <cstdlib>
#include <iostream>

#include "radalt.h"

namespace {

/// The radar-altimeter unit has no fans.
const int NUM_FANS = 0;

}  // namespace

HARDWARE::HARDWARE() : Handheld_Hardware(NUM_FANS) {
  Init();
}

HARDWARE::~HARDWARE() = default;

void HARDWARE::Init() {
  const int handle = Radalt_Init();
  if (handle < 0) {
    std::cerr << " HARDWARE::Init  critical error opening device, errno=" << handle << std::endl;
    std::exit(1);
  }
  board_handle_ = handle;
  InitHardware();
}
