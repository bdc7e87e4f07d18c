#include <mutex>

#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"
#include "messaging/failure_event.h"

namespace {

/// The power supply's code for the LED state that signals a loaded user interface.
constexpr int USER_INTERFACE_LOADED = 12;

std::mutex driver_arrival;
unsigned int early_messages = 0;

bool driver_has_arrived() {
  const std::lock_guard<std::mutex> lock(driver_arrival);
  if (!PSdriver) {
    ++early_messages;
  }
  return PSdriver != nullptr;
}

}  // namespace

unsigned int AdoptDriver(psdriver* driver) {
  const std::lock_guard<std::mutex> lock(driver_arrival);
  PSdriver = driver;
  const unsigned int early = early_messages;
  early_messages = 0;
  return early;
}

void Handheld_Hardware::UIDoneLoadingDDS_SubCallback(char const*) {
  if (!driver_has_arrived()) {
    return;
  }
  int status = USER_INTERFACE_LOADED;
  try {
    PSdriver->SetSystemLEDStatus(status, false);
  } catch (const psdriverError&) {
    SendFailureEvent(Attr_EventMessage, "Handheld_Hardware::UIDoneLoadingDDS_SubCallback()",
                     "Power Supply Driver Failure: UI Done Loading");
  }
}
