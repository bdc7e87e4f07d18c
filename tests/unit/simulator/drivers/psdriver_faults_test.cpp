#include <psdriver.h>

#include <gtest/gtest.h>

#include <cerrno>

#include "tests/unit/simulator/drivers/driver_fixture.h"

namespace {

using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::Reply;
using simulator_test::hear;
using simulator_test::heard;
using simulator_test::Heard;

constexpr char DEVICE[] = "/dev/null";

class PsdriverFaultsTest : public simulator_test::DriverTest {
protected:
  psdriver driver_{DEVICE};
};

/// The message of the operation's exception.
template <typename Operation>
std::string refusal(Operation operation) {
  try {
    operation();
  } catch (const psdriverError& error) {
    return error.what();
  }
  return "done";
}

TEST_F(PsdriverFaultsTest, ADeviceThatDoesNotExistIsRefused) {
  EXPECT_EQ(refusal([] { psdriver("/dev/i2c-3-of-nobody"); }), "/dev/i2c-3-of-nobody: No such file or directory");
}

TEST_F(PsdriverFaultsTest, AnOpeningThatFailsSaysWhy) {
  unit_.faults().arm(Point::PSDRIVER_OPEN, {FaultKind::FAIL, EACCES});
  EXPECT_EQ(refusal([] { psdriver opened(DEVICE); }), "psdriver.open: Permission denied");
}

TEST_F(PsdriverFaultsTest, ARequestThatFailsIsNeverAnswered) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::FAIL, 0, 1, 1});
  EXPECT_EQ(refusal([&] { driver_.GetBatteryTemperature(); }), "psdriver.GetBatteryTemperature: Input/output error");
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_.GetCharger_BatteryStatus();
  EXPECT_EQ(heard.at_least(1)[0].first, 'b');
}

TEST_F(PsdriverFaultsTest, ARegistrationThatFailsKeepsTheEarlierFunction) {
  driver_.SetBatteryTemperatureCallback(hear<'1'>);
  unit_.faults().arm(Point::SET_BATTERY_TEMPERATURE_CALLBACK, {FaultKind::FAIL, 0});
  EXPECT_EQ(refusal([&] { driver_.SetBatteryTemperatureCallback(hear<'2'>); }),
            "psdriver.SetBatteryTemperatureCallback: Input/output error");
  driver_.GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(1)[0].first, '1');
}

TEST_F(PsdriverFaultsTest, AStatusThatFailsIsNotSet) {
  power_supply_.set_led_status(1);
  unit_.faults().arm(Point::SET_SYSTEM_LED_STATUS, {FaultKind::FAIL, 0});
  int led = 12;
  EXPECT_EQ(refusal([&] { driver_.SetSystemLEDStatus(led, false); }),
            "psdriver.SetSystemLEDStatus: Input/output error");
  EXPECT_EQ(power_supply_.led_status(), 1);
}

TEST_F(PsdriverFaultsTest, ASwallowedReplyNeverComes) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::NO_REPLY, 0, 1, 1});
  power_supply_.set_reply(Reply::BATTERY_TEMPERATURE, 27);
  driver_.GetBatteryTemperature();
  driver_.GetBatteryTemperature();
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  driver_.GetCharger_BatteryStatus();
  const Heard::Calls calls = heard.at_least(2);
  EXPECT_EQ(calls[0], (std::pair<char, int>('e', 27)));
  EXPECT_EQ(calls[1].first, 'b');
}

TEST_F(PsdriverFaultsTest, ALateReplyIsOvertaken) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  driver_.SetCharger_BatteryStatusCallback(hear<'b'>);
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::LATE, 50});
  driver_.GetBatteryTemperature();
  driver_.GetCharger_BatteryStatus();
  const Heard::Calls calls = heard.at_least(2);
  EXPECT_EQ(calls[0].first, 'b');
  EXPECT_EQ(calls[1].first, 'e');
}

TEST_F(PsdriverFaultsTest, ADoubledReplyComesTwice) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::TWICE, 0, 1, 1});
  driver_.GetBatteryTemperature();
  driver_.GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(3).size(), 3U);
}

TEST_F(PsdriverFaultsTest, AGarbledReplyCarriesTheWrongValue) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  power_supply_.set_reply(Reply::BATTERY_TEMPERATURE, 27);
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::GARBAGE, -99, 1, 1});
  driver_.GetBatteryTemperature();
  driver_.GetBatteryTemperature();
  EXPECT_EQ(heard.at_least(2), (Heard::Calls{{'e', -99}, {'e', 27}}));
}

TEST_F(PsdriverFaultsTest, EachGarbledReplyIsDrawn) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  simulator::model::Fault fault{FaultKind::GARBAGE};
  fault.seed = 9;
  fault.draws = true;
  for (int round = 0; round < 2; ++round) {
    unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, fault);
    driver_.GetBatteryTemperature();
    driver_.GetBatteryTemperature();
  }
  const Heard::Calls calls = heard.at_least(4);
  EXPECT_NE(calls[0].second, calls[1].second);
  EXPECT_EQ(calls[2].second, calls[0].second);
  EXPECT_EQ(calls[3].second, calls[1].second);
}

TEST_F(PsdriverFaultsTest, AStuckReplyRepeatsTheLastOne) {
  driver_.SetBatteryTemperatureCallback(hear<'e'>);
  power_supply_.set_reply(Reply::BATTERY_TEMPERATURE, 27);
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::STUCK, 0, 1, simulator::model::Fault::ALWAYS, 2});
  for (std::size_t request = 0; request < 4; ++request) {
    power_supply_.set_reply(Reply::BATTERY_TEMPERATURE, 30 + static_cast<int>(request));
    driver_.GetBatteryTemperature();
    heard.at_least(request + 1);
  }
  EXPECT_EQ(heard.at_least(4), (Heard::Calls{{'e', 27}, {'e', 31}, {'e', 31}, {'e', 33}}));
}

/// The operations of one reply kind, and its name.
struct ReplyOperations {
  const char* name;
  void (psdriver::*request)();
  void (psdriver::*registration)(psdriver::Callback);
};

class PsdriverPointsTest : public PsdriverFaultsTest, public ::testing::WithParamInterface<ReplyOperations> {
protected:
  /// Arms a failure at the point with that name.
  void fail(const std::string& point) {
    unit_.faults().arm(simulator::model::point_named(point).value(), {FaultKind::FAIL, EBUSY});
  }
};

TEST_P(PsdriverPointsTest, RequestAndRegistrationFailAtTheirOwnPoints) {
  const std::string request = std::string("psdriver.Get") + GetParam().name;
  const std::string registration = std::string("psdriver.Set") + GetParam().name + "Callback";
  fail(request);
  EXPECT_EQ(refusal([&] { (driver_.*GetParam().request)(); }), request + ": Device or resource busy");
  EXPECT_EQ(refusal([&] { (driver_.*GetParam().registration)(nullptr); }), "done");
  fail(registration);
  EXPECT_EQ(refusal([&] { (driver_.*GetParam().registration)(nullptr); }), registration + ": Device or resource busy");
}

INSTANTIATE_TEST_SUITE_P(
    Replies, PsdriverPointsTest,
    ::testing::Values(ReplyOperations{"BatteryRelativeStateOfCharge", &psdriver::GetBatteryRelativeStateOfCharge,
                                      &psdriver::SetBatteryRelativeStateOfChargeCallback},
                      ReplyOperations{"Charger_BatteryStatus", &psdriver::GetCharger_BatteryStatus,
                                      &psdriver::SetCharger_BatteryStatusCallback},
                      ReplyOperations{"SoftwareVersionNumber", &psdriver::GetSoftwareVersionNumber,
                                      &psdriver::SetSoftwareVersionNumberCallback},
                      ReplyOperations{"PowerSupplyTemperatureValue", &psdriver::GetPowerSupplyTemperatureValue,
                                      &psdriver::SetPowerSupplyTemperatureValueCallback},
                      ReplyOperations{"BatteryTemperature", &psdriver::GetBatteryTemperature,
                                      &psdriver::SetBatteryTemperatureCallback},
                      ReplyOperations{"BatteryAverageTimeToEmpty", &psdriver::GetBatteryAverageTimeToEmpty,
                                      &psdriver::SetBatteryAverageTimeToEmptyCallback},
                      ReplyOperations{"BatteryRunTimeToEmpty", &psdriver::GetBatteryRunTimeToEmpty,
                                      &psdriver::SetBatteryRunTimeToEmptyCallback}),
    [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
