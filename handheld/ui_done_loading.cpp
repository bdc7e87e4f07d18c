#include "handheld/driver_arrival.h"
#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"

namespace {

/// The power supply's code for the LED state that signals a loaded user interface.
constexpr int USER_INTERFACE_LOADED = 12;

}  // namespace

void Handheld_Hardware::UIDoneLoadingDDS_SubCallback(char const*) {
  if (!handheld::driver_arrival.wait()) {
    return;
  }
  int status = USER_INTERFACE_LOADED;
  try {
    PSdriver->SetSystemLEDStatus(status, false);
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::UIDoneLoadingDDS_SubCallback()",
                             "Power Supply Driver Failure: UI Done Loading");
  }
}
