#include "board/hardware.h"

#include <cstdlib>
#include <iostream>
#include <string>

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
    std::cerr << " HARDWARE::Init  critical error opening device, errno=" << std::to_string(handle) << std::endl;
    // The subscription's start-up thread must not use objects that exit() destroys.
    wait_for_subscription();
    std::exit(1);
  }
  board_handle_ = handle;
  InitHardware();
}
