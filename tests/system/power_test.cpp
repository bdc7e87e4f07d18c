// Battery, charger and brightness of the real library against the simulated controller.

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::IsEmpty;

class PowerTest : public testing::Test {
protected:
  Host& host() {
    if (!host_) {
      host_.emplace(unit_.start().host());
    }
    return *host_;
  }

  /// How many replies the driver has delivered, counted while the unit is watched.
  std::uint64_t replies() { return unit_.calls_of(Point::PSDRIVER_REPLY); }

  SimulatedUnit unit_;
  std::optional<Host> host_;
};

TEST_F(PowerTest, TheChargeIsTheControllers) {
  EXPECT_EQ(host().call("GetBatteryChargeStatus", {-1}), json::parse(R"({"result":true,"charge":57})"));
  EXPECT_EQ(host().call("BatteryPresent")["result"], 1);
  EXPECT_THAT(unit_.events(), IsEmpty());
}

TEST_F(PowerTest, ChargeAndBothTimesAreAskedForInTheirOrder) {
  host();
  unit_.recorded();
  host().call("GetBatteryChargeStatus");
  EXPECT_THAT(unit_.call_names(), ElementsAre("psdriver.GetBatteryRelativeStateOfCharge", "psdriver.reply",
                                              "psdriver.GetBatteryAverageTimeToEmpty", "psdriver.reply",
                                              "psdriver.GetBatteryRunTimeToEmpty", "psdriver.reply"));
}

TEST_F(PowerTest, AChargerThatFailsIsOneEvent) {
  unit_.fault(Point::GET_CHARGER_BATTERY_STATUS, {FaultKind::FAIL});
  EXPECT_EQ(host().call("GetChargerStatus")["result"], false);
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::GetChargerStatus()",
                                                "Power Supply Driver Failure: Battery Charger Status")));
}

TEST_F(PowerTest, AChargeThatFailsIsOneEventAndLeavesTheCallersValue) {
  unit_.fault(Point::GET_BATTERY_RELATIVE_STATE_OF_CHARGE, {FaultKind::FAIL});
  EXPECT_EQ(host().call("GetBatteryChargeStatus", {-1}), json::parse(R"({"result":false,"charge":-1})"));
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::GetBatteryChargeStatus()",
                                                "Power Supply Driver Failure: Battery Relative Charge")));
}

TEST_F(PowerTest, ATimeThatFailsComesAfterTheCharge) {
  unit_.fault(Point::GET_BATTERY_AVERAGE_TIME_TO_EMPTY, {FaultKind::FAIL});
  EXPECT_EQ(host().call("GetBatteryChargeStatus", {-1}), json::parse(R"({"result":false,"charge":57})"));
  unit_.fault(Point::GET_BATTERY_AVERAGE_TIME_TO_EMPTY, {FaultKind::NONE});
  unit_.fault(Point::GET_BATTERY_RUN_TIME_TO_EMPTY, {FaultKind::FAIL});
  EXPECT_EQ(host().call("GetBatteryChargeStatus", {-1}), json::parse(R"({"result":false,"charge":57})"));
  const json failure =
      event("Handheld_Hardware::GetBatteryChargeStatus()", "Power Supply Driver Failure: Battery Relative Charge");
  EXPECT_THAT(unit_.events(), ElementsAre(failure, failure));
}

TEST_F(PowerTest, AReplyThatNobodyWaitedForAnswersTheNextRequest) {
  unit_.fault(Point::GET_BATTERY_TEMPERATURE, {FaultKind::TWICE, 0, 1, 1});
  host().call("GetTemperature");
  EXPECT_TRUE(eventually([this] { return replies() == 3; }));
  unit_.set("power_supply.battery_temperature", 99).set("power_supply.reply_delay", 200000);
  EXPECT_EQ(host().call("GetTemperature")["temperatures"][2]["celsius"], 27);
}

TEST_F(PowerTest, AReplyThatNeverComesBlocksItsCallerOnly) {
  unit_.fault(Point::GET_BATTERY_TEMPERATURE, {FaultKind::NO_REPLY});
  OpenCall blocked = host().begin("GetTemperature");
  EXPECT_TRUE(eventually([this] { return unit_.calls_of(Point::GET_BATTERY_TEMPERATURE) == 1; }));
  EXPECT_EQ(host().call("GetBatteryChargeStatus")["charge"], 57);
  EXPECT_FALSE(blocked.answered());
  EXPECT_THAT(host().leave(), ExitedWith(0));
}

TEST_F(PowerTest, TheBrightnessIsTheDevices) {
  EXPECT_EQ(host().call("GetBacklight", {-1}), json::parse(R"({"result":1,"level":100})"));
  unit_.set("sysfs.brightness", "7");
  EXPECT_EQ(host().call("GetBacklight", {-1}), json::parse(R"({"result":1,"level":7})"));
}

TEST_F(PowerTest, AMissingBrightnessIsZero) {
  unit_.set("sysfs.brightness", nullptr);
  EXPECT_EQ(host().call("GetBacklight", {-1}), json::parse(R"({"result":1,"level":0})"));
  EXPECT_EQ(host().err(), "");
  EXPECT_THAT(unit_.events(), IsEmpty());
}

TEST_F(PowerTest, TheUnitHasOneNetworkInterface) {
  EXPECT_EQ(host().call("GetMaxInterfaces")["result"], 1);
}

// A charger status and the resulting charge.
struct Corrected {
  int charger_status;
  int charge;
  int battery_present;
};

void PrintTo(const Corrected& corrected, std::ostream* stream) {
  *stream << "charger status " << corrected.charger_status << " makes it " << corrected.charge;
}

class CorrectedChargeTest : public PowerTest, public testing::WithParamInterface<Corrected> {};

TEST_P(CorrectedChargeTest, TheLastChargerStatusCorrectsTheCharge) {
  unit_.set("power_supply.charger_status", GetParam().charger_status);
  EXPECT_EQ(host().call("GetChargerStatus")["result"], true);
  EXPECT_EQ(host().call("GetBatteryChargeStatus")["charge"], GetParam().charge);
  EXPECT_EQ(host().call("BatteryPresent")["result"], GetParam().battery_present);
}

INSTANTIATE_TEST_SUITE_P(ChargerStatus, CorrectedChargeTest,
                         testing::Values(Corrected{0x00, 57, 1}, Corrected{0x01, 57, 1}, Corrected{0x08, 57, 1},
                                         Corrected{0x09, 100, 1}, Corrected{0x10, 0, 0}, Corrected{0x19, 0, 0},
                                         Corrected{-1, 0, 0}));

}  // namespace
