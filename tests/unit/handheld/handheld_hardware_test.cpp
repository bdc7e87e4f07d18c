#include <algorithm>

#include "tests/doubles/fake_dds.h"
#include "tests/unit/handheld/handheld_under_test.h"
#include "varnok_errors.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using testing::ElementsAre;
using testing::IsEmpty;

const Calls REGISTRATIONS{"SetBatteryRelativeStateOfChargeCallback", "SetCharger_BatteryStatusCallback",
                          "SetSoftwareVersionNumberCallback",        "SetPowerSupplyTemperatureValueCallback",
                          "SetBatteryTemperatureCallback",           "SetBatteryAverageTimeToEmptyCallback",
                          "SetBatteryRunTimeToEmptyCallback",        "SetSwitchInterruptCallback"};

const char UI_TOPIC[] = "dds create_topic Halcyra/local/UIDoneLoading ";
const char VOLTAGE_TOPIC[] = "dds create_topic Halcyra/local/ExternalVoltage ";

class HandheldHardwareTest : public HandheldSurroundings {
protected:
  CapturedOutput output_;
};

std::ptrdiff_t place_of(const std::string& call) {
  const Calls all = calls().all();
  return std::find_if(all.begin(), all.end(), [&](const std::string& one) { return one.rfind(call, 0) == 0; }) -
         all.begin();
}

TEST_F(HandheldHardwareTest, ConstructionOpensTheI2cBusOnceAndRegistersNothing) {
  const PlainHandheld unit;
  EXPECT_THAT(calls().all(), ElementsAre("psdriver /dev/i2c-3"));
  EXPECT_EQ(output_.err(), "");
}

TEST_F(HandheldHardwareTest, TheFanCountIsPassedOnUnchanged) {
  EXPECT_EQ(PlainHandheld(3).fan_states.size(), 3U);
  EXPECT_EQ(PlainHandheld(-3).fan_states.size(), 0U);
}

TEST_F(HandheldHardwareTest, TheMembersHaveTheirFirstValues) {
  PlainHandheld unit;
  EXPECT_EQ(unit.kelvin_offset_, 273.15F);
  EXPECT_EQ(unit.board_handle_, 0);
  EXPECT_EQ(unit.GetMaxInterfaces(), 1);
  EXPECT_EQ(unit.PsTemperature(), 0);
  EXPECT_EQ(unit.BatteryTemperature(), 0);
  EXPECT_EQ(unit.Slot1MIC284Temperature(), 0);
}

TEST_F(HandheldHardwareTest, ThePublisherIsMadeBeforeTheDriver) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  const PlainHandheld unit;
  EXPECT_LT(place_of(VOLTAGE_TOPIC), place_of("psdriver"));
  EXPECT_LT(place_of("dds create_datawriter"), place_of("psdriver"));
}

TEST_F(HandheldHardwareTest, TheSubscriberConnectsToTheDoneLoadingTopicInTheBackground) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  const PlainHandheld unit;
  ASSERT_TRUE(calls().wait_for("dds create_datareader"));
  EXPECT_EQ(calls().starting_with(UI_TOPIC).size(), 1U);
}

TEST_F(HandheldHardwareTest, TheSubscriberIsMadeBeforeThePublisher) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  dds.runs_first("create_publisher", [] { EXPECT_TRUE(calls().wait_for("dds create_datareader")); });
  const PlainHandheld unit;
  EXPECT_LT(place_of("dds create_datareader"), place_of(VOLTAGE_TOPIC));
}

TEST_F(HandheldHardwareTest, ADriverThatCannotBeMadeLetsItsErrorOutAfterTopicsAreGivenBack) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  driver_.fails("psdriver");
  EXPECT_THROW(PlainHandheld(), psdriverError);
  EXPECT_THAT(calls().starting_with("dds delete_topic"), ElementsAre("dds delete_topic Halcyra/local/ExternalVoltage",
                                                                     "dds delete_topic Halcyra/local/UIDoneLoading"));
  EXPECT_THAT(doubles::sent_events(), IsEmpty());
}

TEST_F(HandheldHardwareTest, APublisherThatCannotBeMadeLetsItsErrorOutAndNoDriverIsMade) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  dds.refuses("create_publisher");
  EXPECT_THROW(PlainHandheld(), Varnok::Connection_errors::Not_Connected);
  EXPECT_EQ(calls().count("psdriver /dev/i2c-3"), 0U);
  EXPECT_EQ(calls().starting_with("dds delete_topic"), Calls{"dds delete_topic Halcyra/local/UIDoneLoading"});
}

TEST_F(HandheldHardwareTest, ASecondObjectMakesASecondDriver) {
  const PlainHandheld first;
  const psdriver* const first_driver = PSdriver;
  const PlainHandheld second;
  EXPECT_NE(PSdriver, first_driver);
  EXPECT_EQ(calls().count("psdriver /dev/i2c-3"), 2U);
}

TEST_F(HandheldHardwareTest, DestructionTakesThePublisherDownBeforeTheSubscriberAndKeepsTheDriver) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  const psdriver* driver = nullptr;
  {
    const PlainHandheld unit;
    driver = PSdriver;
    ASSERT_TRUE(calls().wait_for("dds create_datareader"));
    calls().clear();
  }
  EXPECT_THAT(calls().all(), ElementsAre("dds delete_contained_entities of publisher", "dds delete_publisher",
                                         "dds delete_topic Halcyra/local/ExternalVoltage",
                                         "dds delete_contained_entities of subscriber", "dds delete_subscriber",
                                         "dds delete_topic Halcyra/local/UIDoneLoading"));
  EXPECT_EQ(PSdriver, driver);
}

TEST_F(HandheldHardwareTest, InitHardwareRegistersInOrderThePowerSwitchLast) {
  PlainHandheld unit;
  calls().clear();
  unit.InitHardware();
  EXPECT_EQ(calls().all(), REGISTRATIONS);
  EXPECT_THAT(doubles::sent_events(), IsEmpty());
}

TEST_F(HandheldHardwareTest, EachKindOfReplyHasItsOwnFunction) {
  PlainHandheld unit;
  unit.InitHardware();
  EXPECT_EQ(driver_.registered(REGISTRATIONS[0]), &BatteryRelativeStateOfChargeResponse);
  EXPECT_EQ(driver_.registered(REGISTRATIONS[2]), &SoftwareVersionNumberResponse);
  EXPECT_EQ(driver_.registered(REGISTRATIONS[3]), &PowerSupplyTemperatureValueResponse);
  EXPECT_EQ(driver_.registered(REGISTRATIONS[4]), &BatteryTemperatureResponse);
  EXPECT_EQ(driver_.registered(REGISTRATIONS[5]), &BatteryAverageTimeToEmptyResponse);
  EXPECT_EQ(driver_.registered(REGISTRATIONS[6]), &BatteryRunTimeToEmptyResponse);
  EXPECT_EQ(driver_.registered(REGISTRATIONS[7]), &Handheld_Hardware::PowerSwitch);
}

TEST_F(HandheldHardwareTest, TheChargerReplyStoresTheStatusAndPostsItsSemaphoreOnce) {
  PlainHandheld unit;
  unit.InitHardware();
  driver_.registered("SetCharger_BatteryStatusCallback")(0x19);
  EXPECT_EQ(charge_status, 0x19);
  EXPECT_TRUE(semExtVoltStatusIrq.try_wait());
  EXPECT_FALSE(semExtVoltStatusIrq.try_wait());
  EXPECT_FALSE(semBatteryStatusIrq.try_wait());
}

class FailingRegistrationTest : public HandheldHardwareTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(FailingRegistrationTest, EndsTheRegistrationWithOneEvent) {
  PlainHandheld unit;
  driver_.fails(REGISTRATIONS[GetParam()]);
  calls().clear();
  unit.InitHardware();
  Calls made(REGISTRATIONS.begin(), REGISTRATIONS.begin() + static_cast<std::ptrdiff_t>(GetParam()) + 1);
  made.push_back("event Handheld_Hardware::InitHandheld_Hardware()");
  EXPECT_EQ(calls().all(), made);
  EXPECT_THAT(doubles::sent_events(),
              ElementsAre(failure_event("Handheld_Hardware::InitHandheld_Hardware()",
                                        "Power Supply Driver Failure: Initialize Handheld_Hardware")));
  for (std::size_t kind = 0; kind < REGISTRATIONS.size(); ++kind) {
    EXPECT_EQ(driver_.registered(REGISTRATIONS[kind]) != nullptr, kind < GetParam()) << REGISTRATIONS[kind];
  }
  EXPECT_EQ(output_.err(), "");
}

INSTANTIATE_TEST_SUITE_P(EachKind, FailingRegistrationTest, testing::Range<std::size_t>(0, 8),
                         [](const auto& kind) { return REGISTRATIONS[kind.param]; });

TEST_F(HandheldHardwareTest, AnotherExceptionPassesThroughInitHardware) {
  PlainHandheld unit;
  driver_.runs_first("SetBatteryTemperatureCallback", [] { throw std::out_of_range("registration"); });
  EXPECT_THROW(unit.InitHardware(), std::out_of_range);
  EXPECT_THAT(doubles::sent_events(), IsEmpty());
}

TEST_F(HandheldHardwareTest, AnEventThatCannotBeSentPassesThroughInitHardware) {
  PlainHandheld unit;
  driver_.fails("SetBatteryTemperatureCallback");
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  EXPECT_THROW(unit.InitHardware(), std::runtime_error);
}

TEST_F(HandheldHardwareTest, AdjustFanSpeedsDoesNothingAndPrintsNothing) {
  PlainHandheld unit;
  const std::string before = output_.out();
  std::vector<FANDATA> list{{1, 2, "left"}};
  unit.AdjustFanSpeeds(list);
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(output_.out(), before);
  EXPECT_EQ(output_.err(), "");
}

TEST_F(HandheldHardwareTest, ReadBusVoltagesDoesNothingAndPrintsNothing) {
  PlainHandheld unit;
  const std::string before = output_.out();
  unit.ReadBusVoltages();
  EXPECT_EQ(output_.out(), before);
  EXPECT_EQ(output_.err(), "");
}

}  // namespace
