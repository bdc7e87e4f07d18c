#include "handheld/handheld_hardware.h"

#include <boost/bind/bind.hpp>

#include "handheld/driver_arrival.h"
#include "handheld/driver_link.h"
#include "handheld/power_switch.h"

using handheld::driver_arrival;

namespace {

/// Call-back of the done-loading subscription. Waits for the driver if the message arrives before the driver is made.
boost::function<void(char const*)> done_loading_handler(Handheld_Hardware* unit) {
  driver_arrival.expect();
  return boost::bind(&Handheld_Hardware::UIDoneLoadingDDS_SubCallback, unit, boost::placeholders::_1);
}

/// Runs a construction step that follows the subscriber. If it throws, waiting messages are released first, because the
/// subscriber's destructor waits for them.
template <typename Step>
auto or_let_messages_go(const Step& step) -> decltype(step()) {
  try {
    return step();
  } catch (...) {
    driver_arrival.give_up();
    throw;
  }
}

}  // namespace

Handheld_Hardware::Handheld_Hardware(const int& n)
    : BASE_HARDWARE(n),
      kelvin_offset_(273.15F),
      board_handle_(0),
      external_voltage_(false),
      ui_done_loading_("Halcyra/local/UIDoneLoading", done_loading_handler(this)),
      external_voltage_publisher_(
          or_let_messages_go([] { return Varnok::DDS_Publisher<bool>("Halcyra/local/ExternalVoltage"); })),
      max_interfaces(1),
      digital_board_scale_(0.25F),
      mic284_celsius_(0),
      ps_temperature_valid_(false),
      battery_temperature_valid_(false),
      mic284_temperature_valid_(false) {
  or_let_messages_go([] { PSdriver = new psdriver("/dev/i2c-3"); });
  driver_arrival.announce();
}

Handheld_Hardware::~Handheld_Hardware() {
  Handheld_Hardware* self = this;
  handheld::switch_owner.compare_exchange_strong(self, nullptr);
}

void Handheld_Hardware::InitHardware() {
  handheld::switch_owner = this;
  try {
    handheld::register_reply_functions();
    PSdriver->SetSwitchInterruptCallback(&Handheld_Hardware::PowerSwitch);
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::InitHandheld_Hardware()",
                             "Power Supply Driver Failure: Initialize Handheld_Hardware");
  }
}

void Handheld_Hardware::wait_for_subscription() const {
  ui_done_loading_.waitForInitDone();
}

void Handheld_Hardware::AdjustFanSpeeds(std::vector<FANDATA>&) {}

void Handheld_Hardware::ReadBusVoltages() {}
