#include <gtest/gtest.h>
#include <psdriver.h>

#include <thread>

#include "tests/contract/power_supply_side.h"
#include "tests/doubles/heard.h"

// The power-supply driver's contract, for every implementation.
namespace {

using doubles::hear;
using doubles::heard;
using Calls = doubles::Heard::Calls;

constexpr char DEVICE[] = "/dev/null";

class PsdriverContract : public ::testing::Test {
protected:
  PsdriverContract() {
    heard.clear();
    driver_ = new psdriver(DEVICE);
  }
  ~PsdriverContract() override { delete driver_; }

  /// Waits until all replies to earlier requests have been delivered.
  void settle() {
    driver_->SetSoftwareVersionNumberCallback(hear<'.'>);
    driver_->GetSoftwareVersionNumber();
    while (heard.at_least(1).back().first != '.') {
      std::this_thread::yield();
    }
  }

  std::unique_ptr<contract::PowerSupplySide> controller_ = contract::make_power_supply_side();
  psdriver* driver_ = nullptr;
};

TEST_F(PsdriverContract, EachRequestIsAnsweredThroughItsOwnFunctionInTheirOrder) {
  driver_->SetBatteryRelativeStateOfChargeCallback(hear<'a'>);
  driver_->SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_->SetSoftwareVersionNumberCallback(hear<'c'>);
  driver_->SetPowerSupplyTemperatureValueCallback(hear<'d'>);
  driver_->SetBatteryTemperatureCallback(hear<'e'>);
  driver_->SetBatteryAverageTimeToEmptyCallback(hear<'f'>);
  driver_->SetBatteryRunTimeToEmptyCallback(hear<'g'>);
  controller_->answer("GetBatteryRelativeStateOfCharge", 57);
  controller_->answer("GetCharger_BatteryStatus", 0x19);
  controller_->answer("GetSoftwareVersionNumber", 10203);
  controller_->answer("GetPowerSupplyTemperatureValue", 253);
  controller_->answer("GetBatteryTemperature", -5);
  controller_->answer("GetBatteryAverageTimeToEmpty", 212);
  controller_->answer("GetBatteryRunTimeToEmpty", 198);
  driver_->GetBatteryRunTimeToEmpty();
  driver_->GetBatteryAverageTimeToEmpty();
  driver_->GetBatteryTemperature();
  driver_->GetPowerSupplyTemperatureValue();
  driver_->GetSoftwareVersionNumber();
  driver_->GetCharger_BatteryStatus();
  driver_->GetBatteryRelativeStateOfCharge();
  EXPECT_EQ(heard.at_least(7),
            (Calls{{'g', 198}, {'f', 212}, {'e', -5}, {'d', 253}, {'c', 10203}, {'b', 0x19}, {'a', 57}}));
}

TEST_F(PsdriverContract, ARequestIsAnsweredExactlyOnce) {
  driver_->SetBatteryTemperatureCallback(hear<'e'>);
  controller_->answer("GetBatteryTemperature", 27);
  controller_->answer("GetSoftwareVersionNumber", 0);
  driver_->GetBatteryTemperature();
  settle();
  EXPECT_EQ(heard.at_least(2), (Calls{{'e', 27}, {'.', 0}}));
}

TEST_F(PsdriverContract, RepliesAndInterruptsComeOnOneThreadOfTheDriversOwn) {
  driver_->SetBatteryTemperatureCallback(hear<'e'>);
  driver_->SetSwitchInterruptCallback(hear<'i'>);
  driver_->GetBatteryTemperature();
  heard.at_least(1);
  controller_->raise_interrupt(1);
  heard.at_least(2);
  const auto threads = heard.threads();
  ASSERT_EQ(threads.size(), 2U);
  EXPECT_NE(threads[0], std::this_thread::get_id());
  EXPECT_EQ(threads[0], threads[1]);
}

TEST_F(PsdriverContract, AnInterruptCarriesItsValue) {
  driver_->SetSwitchInterruptCallback(hear<'i'>);
  for (const int value : {0x41, 0, -1}) {
    controller_->raise_interrupt(value);
  }
  EXPECT_EQ(heard.at_least(3), (Calls{{'i', 0x41}, {'i', 0}, {'i', -1}}));
}

TEST_F(PsdriverContract, ALaterRegistrationReplacesTheEarlier) {
  driver_->SetBatteryTemperatureCallback(hear<'1'>);
  driver_->SetBatteryTemperatureCallback(hear<'2'>);
  driver_->GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(1)[0].first, '2');
}

TEST_F(PsdriverContract, AReplyWithoutFunctionIsDropped) {
  driver_->GetBatteryTemperature();
  settle();
  EXPECT_EQ(heard.at_least(1).size(), 1U);
}

TEST_F(PsdriverContract, AReplyFunctionMayMakeRequests) {
  static psdriver* driver = nullptr;
  driver = driver_;
  driver_->SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_->SetBatteryTemperatureCallback([](int value) {
    heard.add('e', value);
    driver->GetCharger_BatteryStatus();
  });
  controller_->answer("GetBatteryTemperature", 27);
  controller_->answer("GetCharger_BatteryStatus", 9);
  driver_->GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(2), (Calls{{'e', 27}, {'b', 9}}));
}

TEST_F(PsdriverContract, AFailedRequestThrowsAndIsNeverAnswered) {
  driver_->SetBatteryTemperatureCallback(hear<'e'>);
  controller_->fail_next("GetBatteryTemperature");
  EXPECT_THROW(driver_->GetBatteryTemperature(), psdriverError);
  settle();
  EXPECT_EQ(heard.at_least(1).size(), 1U);
  driver_->GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(2)[1].first, 'e');
}

TEST_F(PsdriverContract, AFailedRegistrationKeepsTheEarlierFunction) {
  driver_->SetBatteryTemperatureCallback(hear<'1'>);
  controller_->fail_next("SetBatteryTemperatureCallback");
  EXPECT_THROW(driver_->SetBatteryTemperatureCallback(hear<'2'>), psdriverError);
  driver_->GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(1)[0].first, '1');
}

TEST_F(PsdriverContract, ASwallowedRequestIsNeverAnswered) {
  driver_->SetBatteryTemperatureCallback(hear<'e'>);
  controller_->swallow_next("GetBatteryTemperature");
  driver_->GetBatteryTemperature();
  settle();
  EXPECT_EQ(heard.at_least(1).size(), 1U);
}

TEST_F(PsdriverContract, StatusesReachTheController) {
  int led = 12;
  int communication = 0x100;
  driver_->SetSystemLEDStatus(led, false);
  driver_->SetUserInterface_CommunicationStatus(communication, false);
  EXPECT_TRUE(controller_->led_status_is(12));
  EXPECT_TRUE(controller_->communication_status_is(0x100));
  EXPECT_EQ(led, 12);
  EXPECT_EQ(communication, 0x100);
}

TEST_F(PsdriverContract, AFailedCommandThrows) {
  int status = 12;
  controller_->fail_next("SetSystemLEDStatus");
  EXPECT_THROW(driver_->SetSystemLEDStatus(status, false), psdriverError);
  controller_->fail_next("SetUserInterface_CommunicationStatus");
  EXPECT_THROW(driver_->SetUserInterface_CommunicationStatus(status, false), psdriverError);
  EXPECT_NO_THROW(driver_->SetSystemLEDStatus(status, false));
}

TEST_F(PsdriverContract, AFailedOpeningThrows) {
  controller_->fail_next("psdriver");
  EXPECT_THROW(psdriver refused(DEVICE), psdriverError);
}

TEST_F(PsdriverContract, ItsErrorIsARuntimeErrorWithText) {
  controller_->fail_next("GetBatteryTemperature");
  try {
    driver_->GetBatteryTemperature();
    FAIL() << "answered";
  } catch (const std::runtime_error& error) {
    EXPECT_STRNE(error.what(), "");
  }
}

}  // namespace
