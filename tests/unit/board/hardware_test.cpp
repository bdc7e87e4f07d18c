#include <atomic>
#include <cstdlib>
#include <future>
#include <iostream>

#include "tests/doubles/fake_dds.h"
#include "tests/unit/board/unit_under_test.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::FakePsdriver;
using doubles::FakeRadalt;
using testing::ElementsAre;
using testing::IsEmpty;

const Calls REGISTRATIONS{"SetBatteryRelativeStateOfChargeCallback", "SetCharger_BatteryStatusCallback",
                          "SetSoftwareVersionNumberCallback",        "SetPowerSupplyTemperatureValueCallback",
                          "SetBatteryTemperatureCallback",           "SetBatteryAverageTimeToEmptyCallback",
                          "SetBatteryRunTimeToEmptyCallback",        "SetSwitchInterruptCallback"};

class HardwareTest : public testing::Test {
protected:
  HardwareTest() {
    doubles::reset_framework();
    calls().clear();
  }

  FakeRadalt board_;
  FakePsdriver driver_;
};

/// The log without the DDS steps, which run concurrently with the construction.
Calls without_dds(const Calls& all) {
  Calls rest;
  for (const std::string& call : all) {
    if (call.compare(0, 4, "dds ") != 0) {
      rest.push_back(call);
    }
  }
  return rest;
}

TEST_F(HardwareTest, TheBoardIsOpenedAfterTheHandheldSetUpAndBeforeTheRegistrations) {
  const CapturedOutput output;
  const OpenHardware unit;
  Calls expected{"psdriver /dev/i2c-3", "init"};
  expected.insert(expected.end(), REGISTRATIONS.begin(), REGISTRATIONS.end());
  EXPECT_EQ(calls().all(), expected);
  EXPECT_EQ(output.err(), "");
}

TEST_F(HardwareTest, TheHandleIsWhatTheDriverReturned) {
  board_.opens_with(4711);
  const CapturedOutput unheard;
  OpenHardware unit;
  EXPECT_EQ(unit.board_handle_, 4711);
  unit.Peek(0);
  EXPECT_THAT(board_.handles(), ElementsAre(4711));
}

TEST_F(HardwareTest, HandleZeroIsAHandle) {
  board_.opens_with(0);
  const CapturedOutput output;
  const OpenHardware unit;
  EXPECT_EQ(unit.board_handle_, 0);
  EXPECT_EQ(calls().all().back(), "SetSwitchInterruptCallback");
  EXPECT_EQ(output.err(), "");
}

TEST_F(HardwareTest, TheHandleIsStoredBeforeTheRegistrationsBegin) {
  board_.opens_with(12).holds(1, 40, 1);
  const CapturedOutput unheard;
  OpenHardware unit;
  board_.opens_with(13);
  int seen = 0;
  driver_.runs_first("SetBatteryRelativeStateOfChargeCallback", [&] { seen = unit.board_handle_; });
  unit.Init();
  EXPECT_EQ(seen, 13);
}

TEST_F(HardwareTest, TheUnitHasNoFans) {
  const CapturedOutput output;
  OpenHardware unit;
  EXPECT_THAT(unit.fan_states, IsEmpty());
  EXPECT_EQ(static_cast<int>(unit.GetFanState(0)), 4);
  EXPECT_EQ(output.err(), "BASE_HARDWARE::GetFanState index err\n");
}

TEST_F(HardwareTest, SetFanStateLeavesTheFanUnknownOnThisUnitToo) {
  const CapturedOutput output;
  OpenHardware unit;
  EXPECT_EQ(unit.SetFanState(0, BASE_HARDWARE::FAN_STATE_2), 0);
  EXPECT_EQ(output.err(), "BASE_HARDWARE::SetFanState err\n");
  EXPECT_EQ(static_cast<int>(unit.GetFanState(0)), 4);
}

TEST_F(HardwareTest, TheKelvinOffsetIsSet) {
  const CapturedOutput unheard;
  const OpenHardware unit;
  EXPECT_EQ(unit.kelvin_offset_, 273.15F);
}

TEST_F(HardwareTest, TheConstructionTraceIsTheOnlyOutput) {
  const CapturedOutput output;
  const OpenHardware unit;
  const std::string out = output.out();
  EXPECT_EQ(out.rfind("BASE_HARDWARE::BASE_HARDWARE1 0x", 0), 0U) << out;
  EXPECT_EQ(out.find('\n'), out.size() - 1) << out;
  EXPECT_EQ(output.err(), "");
}

using HardwareDeathTest = HardwareTest;

TEST_F(HardwareDeathTest, ABoardThatCannotBeOpenedEndsTheProcessWithStatusOne) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        board_.opens_with(-19);
        const OpenHardware unit;
      },
      testing::ExitedWithCode(1), testing::Eq(" HARDWARE::Init  critical error opening device, errno=-19\n"));
}

TEST_F(HardwareDeathTest, TheErrorNumberIsDecimalWhateverTheHostHasLeftOnTheStream) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        board_.opens_with(-19);
        std::cerr << std::hex;
        const OpenHardware unit;
      },
      testing::ExitedWithCode(1), testing::Eq(" HARDWARE::Init  critical error opening device, errno=-19\n"));
}

TEST_F(HardwareDeathTest, TheProcessEndsOnlyWhenTheSubscriptionHasStarted) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  static std::atomic<bool> reader_made{false};
  EXPECT_EXIT(
      {
        FakeDds dds;
        const doubles::ParticipantInUse in_use(dds.participant());
        std::promise<void> board_opened;
        calls().runs_at("init", [&] { board_opened.set_value(); });
        dds.runs_first("create_datareader", [&] { board_opened.get_future().wait(); });
        dds.runs_last("create_datareader", [] { reader_made = true; });
        std::atexit([] { std::_Exit(reader_made ? 1 : 42); });
        board_.opens_with(-19);
        const OpenHardware unit;
      },
      testing::ExitedWithCode(1), testing::Eq(" HARDWARE::Init  critical error opening device, errno=-19\n"));
}

TEST_F(HardwareDeathTest, NothingIsRegisteredWithTheDriverWhenTheBoardCannotBeOpened) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        board_.opens_with(-1);
        driver_.runs_first("SetBatteryRelativeStateOfChargeCallback", [] { std::_Exit(77); });
        const OpenHardware unit;
      },
      testing::ExitedWithCode(1), "errno=-1\n");
}

TEST_F(HardwareTest, ADriverFailureWhileRegisteringIsAnEventAndTheUnitLives) {
  driver_.fails("SetSoftwareVersionNumberCallback");
  const CapturedOutput output;
  const OpenHardware unit;
  ASSERT_EQ(doubles::sent_events().size(), 1U);
  EXPECT_EQ(doubles::sent_events()[0].source, "Handheld_Hardware::InitHandheld_Hardware()");
  EXPECT_EQ(output.err(), "");
}

TEST_F(HardwareTest, AnotherExceptionWhileRegisteringLeavesAfterTheHandheldPartIsTakenDown) {
  FakeDds dds;
  const doubles::ParticipantInUse in_use(dds.participant());
  driver_.runs_first("SetSwitchInterruptCallback", [] { throw std::out_of_range("registration"); });
  const CapturedOutput unheard;
  EXPECT_THROW(OpenHardware(), std::out_of_range);
  EXPECT_THAT(
      calls().starting_with("dds delete"),
      ElementsAre("dds delete_contained_entities of publisher", "dds delete_publisher",
                  "dds delete_topic Halcyra/local/ExternalVoltage", "dds delete_contained_entities of subscriber",
                  "dds delete_subscriber", "dds delete_topic Halcyra/local/UIDoneLoading"));
  EXPECT_EQ(without_dds(calls().all()).back(), "SetSwitchInterruptCallback");
}

TEST_F(HardwareTest, DestructionTakesThePublisherDownThenTheSubscriberAndNeverClosesTheBoard) {
  FakeDds dds;
  const doubles::ParticipantInUse in_use(dds.participant());
  const CapturedOutput unheard;
  {
    const OpenHardware unit;
    ASSERT_TRUE(calls().wait_for("dds create_datareader"));
    calls().clear();
  }
  EXPECT_THAT(calls().all(), ElementsAre("dds delete_contained_entities of publisher", "dds delete_publisher",
                                         "dds delete_topic Halcyra/local/ExternalVoltage",
                                         "dds delete_contained_entities of subscriber", "dds delete_subscriber",
                                         "dds delete_topic Halcyra/local/UIDoneLoading"));
}

}  // namespace
