#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <string>

#include "handheld/driver_arrival.h"
#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"
#include "handheld/power_switch.h"
#include "handheld/remote_services.h"
#include "tests/doubles/captured_output.h"
#include "tests/doubles/fake_clock.h"
#include "tests/doubles/fake_psdriver.h"
#include "tests/doubles/fake_varnok.h"

/// The handheld layer on a board that answers at once. Its board calls are logged: "rftemp", "getDigitalBoardTemp
/// <scale>".
class PlainHandheld : public Handheld_Hardware {
public:
  explicit PlainHandheld(int fans = 0) : Handheld_Hardware(fans) {}

  int GetVersionList(std::vector<VERSIONSDATA>&) override { return 1; }
  std::string i2c_command_str() override { return tools_; }
  int write_hw(int, unsigned int, unsigned int, unsigned int) override { return 0; }
  int read_hw(int, unsigned int, unsigned int, unsigned int*) override { return 0; }
  TEMPERATUREDATA rftemp() override {
    doubles::calls().record("rftemp");
    if (rf_throws_) {
      throw std::out_of_range("rftemp");
    }
    return {41.5F, "RF Temperature"};
  }
  unsigned int get_RFAdc(unsigned int) override { return 0; }
  float getDigitalBoardTemp(float scale) override {
    doubles::calls().record("getDigitalBoardTemp " + std::to_string(scale));
    if (digital_throws_) {
      throw std::out_of_range("getDigitalBoardTemp");
    }
    return 17.5F;
  }

  std::string tools_ = "/home/radalt/bin/";
  bool rf_throws_ = false;
  bool digital_throws_ = false;

  using BASE_HARDWARE::fan_states;
  using Handheld_Hardware::board_handle_;
  using Handheld_Hardware::kelvin_offset_;
  using Handheld_Hardware::wait_for_subscription;
};

/// The time of the stopped clock in these tests, and the resulting time stamp of events: the unit's zone is two hours
/// east.
constexpr std::time_t NOON_UTC = 1275220800;
constexpr std::int64_t LOCAL_STAMP = NOON_UTC + 7200;

/// The failure event with that source and text, sent through the library's channel while the clock is stopped.
inline doubles::SentEvent failure_event(const std::string& source, const std::string& text) {
  return {source, 3, text, 3, 0x10000, 0, LOCAL_STAMP, &Attr_EventMessage};
}

/// Resets the layer's file-scope state to its state after loading.
inline void reset_driver_link() {
  using boost::interprocess::interprocess_semaphore;
  for (interprocess_semaphore* semaphore :
       {&semBatteryStatusIrq, &semBatteryTimeIrq, &semBatteryRunTimeIrq, &semExtVoltStatusIrq, &semPowerSupplyVerIrq,
        &semPowerSupplyTempIrq, &semBatteryTempIrq}) {
    while (semaphore->try_wait()) {
    }
  }
  PSdriver = nullptr;
  new (&handheld::driver_arrival) handheld::DriverArrival;
  handheld::switch_owner = nullptr;
  ps_temp = battery_temp = charge_status = batteryRun_time = battery_time = battery_charge = 0;
  ps_ver.str("");
  cover_closed = false;
  CommunicationStatusInterruptValue = 0;
  GuiManagerPtr = Halcyra::gui::GUIManager::_nil();
  EnumEngPtr = Varnok::HwEnumerate_Able::_nil();
  CORBA::release(EverBdyPtr);
  EverBdyPtr = nullptr;
}

/// Everything that a handheld object needs around it.
class HandheldSurroundings : public testing::Test {
protected:
  HandheldSurroundings() {
    doubles::reset_framework();
    reset_driver_link();
    doubles::calls().clear();
  }

  doubles::StoppedClock clock_{NOON_UTC, "UNIT-2"};
  doubles::FakePsdriver driver_;
};

/// A handheld object after its registrations; the log begins afterwards.
class HandheldTest : public HandheldSurroundings {
protected:
  HandheldTest() {
    const doubles::CapturedOutput unheard;
    unit_ = std::make_unique<PlainHandheld>();
    unit_->InitHardware();
    doubles::calls().clear();
  }

  std::unique_ptr<PlainHandheld> unit_;
};
