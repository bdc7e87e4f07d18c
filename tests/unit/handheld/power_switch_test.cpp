#include <sys/stat.h>

#include <thread>

#include "tests/doubles/hexadecimal_streams.h"
#include "tests/unit/handheld/power_switch_under_test.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::FakeServices;
using doubles::file_text;
using doubles::put_file;
using doubles::remove_file;
using doubles::sent_events;
using testing::ElementsAre;
using testing::IsEmpty;

class PowerSwitchTest : public PowerSwitchSurroundings {};

TEST_F(PowerSwitchTest, TheWholeShutdownRunsInItsOrder) {
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), whole_shutdown());
  EXPECT_EQ(output_.out(), trace(256) + PROGRESS);
  EXPECT_EQ(output_.err(), "");
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(PowerSwitchTest, EachLineStandsBeforeItsStep) {
  const OutputInLog lines;
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_THAT(calls().all(), ElementsAre(TAKE_LOCK, "out PowerSwitch:Comm status interrupt value256", FIND_GUI_MANAGER,
                                         FIND_EVERYBODY_ENGINE, FIND_HW_ENUMERATION, QUESTION, SCREEN, SCREEN_SIZE,
                                         "out Shutting down everybody engine", GET_SHUTDOWN, MAKE_CORE, shutdown_all(),
                                         "out Shutting down hardware enum", SHUTDOWN_HW_ENUMERATION,
                                         "out Hardware shutdown", SCRIPT, USER_INTERFACE_GONE, GIVE_LOCK_BACK));
}

TEST_F(PowerSwitchTest, TheTraceComesBeforeTheBacklightIsRaised) {
  const OutputInLog lines;
  std::string brightness_at_trace;
  calls().runs_at("out PowerSwitch:Comm status interrupt value32",
                  [&] { brightness_at_trace = file_text(BRIGHTNESS_FILE); });
  Handheld_Hardware::PowerSwitch(0x20);
  EXPECT_EQ(brightness_at_trace, "before");
  EXPECT_EQ(file_text(BRIGHTNESS_FILE), "255");
}

TEST_F(PowerSwitchTest, TheLockIsHeldUntilTheCoverStepIsDone) {
  std::string power_at_the_end;
  calls().runs_at(GIVE_LOCK_BACK, [&] { power_at_the_end = file_text(POWER_FILE); });
  Handheld_Hardware::PowerSwitch(0x40);
  EXPECT_EQ(power_at_the_end, "0");
}

TEST_F(PowerSwitchTest, TheDriversThreadRunsTheHandler) {
  std::thread::id asked_on;
  command_ = [&](const std::string&) {
    asked_on = std::this_thread::get_id();
    return 0;
  };
  driver_.interrupt(0x100);
  EXPECT_EQ(asked_on, driver_.thread_id());
  EXPECT_EQ(calls().all(), whole_shutdown());
}

TEST_F(PowerSwitchTest, TheValueIsKeptAndTraced) {
  Handheld_Hardware::PowerSwitch(-2147483647 - 1);
  EXPECT_EQ(CommunicationStatusInterruptValue, -2147483647 - 1);
  EXPECT_EQ(output_.out(), "PowerSwitch:Comm status interrupt value-2147483648\n");
}

TEST_F(PowerSwitchTest, TheTraceIsDecimalWhateverTheHostHasLeftOnTheStream) {
  const doubles::HexadecimalStreams left;
  Handheld_Hardware::PowerSwitch(0x80);
  EXPECT_EQ(output_.out(), trace(128));
}

TEST_F(PowerSwitchTest, TheLockIsHeldFromBeforeTheTraceToTheEnd) {
  Handheld_Hardware::PowerSwitch(0);
  EXPECT_THAT(calls().all(), ElementsAre(TAKE_LOCK, GIVE_LOCK_BACK));
}

TEST_F(PowerSwitchTest, Value0x20RaisesTheBacklightAndDoesNothingElse) {
  Handheld_Hardware::PowerSwitch(0x20);
  EXPECT_EQ(file_text(BRIGHTNESS_FILE), "255");
  EXPECT_EQ(file_text(POWER_FILE), "before");
  EXPECT_THAT(calls().all(), ElementsAre(TAKE_LOCK, GIVE_LOCK_BACK));
  EXPECT_EQ(output_.out(), trace(32));
}

class NoActionTest : public PowerSwitchTest, public testing::WithParamInterface<int> {};

TEST_P(NoActionTest, DoesNothingButTrace) {
  Handheld_Hardware::PowerSwitch(GetParam());
  EXPECT_EQ(file_text(BRIGHTNESS_FILE), "before");
  EXPECT_EQ(file_text(POWER_FILE), "before");
  EXPECT_THAT(calls().all(), ElementsAre(TAKE_LOCK, GIVE_LOCK_BACK));
  EXPECT_EQ(output_.out(), trace(GetParam()));
  EXPECT_EQ(output_.err(), "");
}

INSTANTIATE_TEST_SUITE_P(Values, NoActionTest, testing::Values(0, 0x08, 0x10, 0x18, 0x80, 0x200, 0x7FFFFE98));

class BacklightBitTest : public PowerSwitchTest, public testing::WithParamInterface<int> {};

TEST_P(BacklightBitTest, RaisesTheBacklight) {
  Handheld_Hardware::PowerSwitch(GetParam());
  EXPECT_EQ(file_text(BRIGHTNESS_FILE), "255");
}

INSTANTIATE_TEST_SUITE_P(Values, BacklightBitTest, testing::Values(0x20, 0x28, 0x30, 0x38, 0x60, 0x120, -1));

class ShutdownBitTest : public PowerSwitchTest, public testing::WithParamInterface<int> {};

TEST_P(ShutdownBitTest, AsksTheQuestion) {
  services_.user_answers(1);
  Handheld_Hardware::PowerSwitch(GetParam());
  EXPECT_THAT(calls().all(), ElementsAre(TAKE_LOCK, FIND_GUI_MANAGER, FIND_EVERYBODY_ENGINE, FIND_HW_ENUMERATION,
                                         QUESTION, GIVE_LOCK_BACK));
}

INSTANTIATE_TEST_SUITE_P(Values, ShutdownBitTest,
                         testing::Values(0x01, 0x02, 0x04, 0x100, 0x107, 0x109, 0x101, -256, -1));

class NoOkTest : public PowerSwitchTest, public testing::WithParamInterface<int> {};

TEST_P(NoOkTest, LeavesEverythingRunning) {
  services_.user_answers(GetParam());
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all().back(), GIVE_LOCK_BACK);
  EXPECT_EQ(calls().all()[calls().all().size() - 2], QUESTION);
  EXPECT_EQ(output_.out(), trace(256));
}

INSTANTIATE_TEST_SUITE_P(Answers, NoOkTest, testing::Values(1, -1, 2, 0x7FFFFFFF));

TEST_F(PowerSwitchTest, CancelStillPerformsTheCoverStep) {
  services_.user_answers(1);
  Handheld_Hardware::PowerSwitch(0x41);
  EXPECT_EQ(file_text(POWER_FILE), "0");
  EXPECT_TRUE(cover_closed);
  EXPECT_EQ(calls().count(SCRIPT), 0U);
}

TEST_F(PowerSwitchTest, OkPerformsTheCoverStepLast) {
  std::string power_at_script;
  command_ = [&](const std::string&) {
    power_at_script = file_text(POWER_FILE);
    return 0;
  };
  std::string power_at_report;
  driver_.runs_first("SetUserInterface_CommunicationStatus", [&] { power_at_report = file_text(POWER_FILE); });
  Handheld_Hardware::PowerSwitch(0x41);
  EXPECT_EQ(power_at_script, "before");
  EXPECT_EQ(power_at_report, "before");
  EXPECT_EQ(file_text(POWER_FILE), "0");
  EXPECT_EQ(calls().all(), whole_shutdown());
}

TEST_F(PowerSwitchTest, TheBacklightIsRaisedBeforeTheQuestion) {
  std::string brightness_at_question;
  services_.runs_first("ShowDialog waiting", [&] { brightness_at_question = file_text(BRIGHTNESS_FILE); });
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_EQ(brightness_at_question, "255");
  EXPECT_EQ(calls().all(), whole_shutdown());
}

TEST_F(PowerSwitchTest, AllBitsTogetherDoAllThree) {
  Handheld_Hardware::PowerSwitch(-1);
  EXPECT_EQ(file_text(BRIGHTNESS_FILE), "255");
  EXPECT_EQ(calls().all(), whole_shutdown());
  EXPECT_EQ(file_text(POWER_FILE), "0");
  EXPECT_EQ(output_.out(), trace(-1) + PROGRESS);
}

TEST_F(PowerSwitchTest, TheCoverWritesOnClosingEachTimeAndOnOpeningOnce) {
  const auto after = [](int value) {
    put_file(POWER_FILE, "untouched");
    Handheld_Hardware::PowerSwitch(value);
    return file_text(POWER_FILE);
  };
  EXPECT_EQ(after(0), "untouched") << "open, and open before";
  EXPECT_EQ(after(0x40), "0");
  EXPECT_TRUE(cover_closed);
  EXPECT_EQ(after(0x40), "0") << "closed again";
  EXPECT_EQ(after(0), "1");
  EXPECT_FALSE(cover_closed);
  EXPECT_EQ(after(0), "untouched");
  EXPECT_EQ(after(0x80), "untouched");
}

TEST_F(PowerSwitchTest, ABacklightPowerFileThatCannotBeOpenedIsPassedOverInSilence) {
  remove_file(POWER_FILE);
  put_file(std::string(POWER_FILE) + "/not_a_file", "");
  Handheld_Hardware::PowerSwitch(0x40);
  EXPECT_TRUE(cover_closed);
  EXPECT_EQ(output_.out(), trace(64));
  EXPECT_EQ(output_.err(), "");
  Handheld_Hardware::PowerSwitch(0);
  EXPECT_FALSE(cover_closed);
  remove_file(POWER_FILE);
}

TEST_F(PowerSwitchTest, EachShutdownMakesACoreOfItsOwn) {
  Handheld_Hardware::PowerSwitch(0x100);
  const std::uint64_t first = doubles::last_core_serial();
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(doubles::last_core_serial(), first + 1);
}

TEST_F(PowerSwitchTest, ARequestLooksUpEachServiceThroughAWrapperOfItsOwn) {
  services_.user_answers(1);
  const unsigned int made = doubles::wrappers_made();
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(doubles::wrappers_made(), made + 3);
  Handheld_Hardware::PowerSwitch(0x20);
  EXPECT_EQ(doubles::wrappers_made(), made + 3);
}

TEST_F(PowerSwitchTest, ShutdownRunsTheScriptThenTellsThePowerSupply) {
  unit_->shutdown();
  EXPECT_THAT(calls().all(), ElementsAre(SCRIPT, USER_INTERFACE_GONE));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(PowerSwitchTest, TheScriptsStatusIsNotLookedAt) {
  for (const int status : {-1, 256, 127 << 8}) {
    command_ = [status](const std::string&) { return status; };
    calls().clear();
    unit_->shutdown();
    EXPECT_THAT(calls().all(), ElementsAre(SCRIPT, USER_INTERFACE_GONE));
  }
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(PowerSwitchTest, ADriverFailureInShutdownIsOneEvent) {
  driver_.fails("SetUserInterface_CommunicationStatus");
  unit_->shutdown();
  EXPECT_THAT(calls().all(), ElementsAre(SCRIPT, USER_INTERFACE_GONE, "event Handheld_Hardware::shutdown()"));
  EXPECT_THAT(sent_events(),
              ElementsAre(failure_event("Handheld_Hardware::shutdown()", "Power Supply Driver Failure: Shutdown")));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(PowerSwitchTest, AnotherExceptionPassesThroughShutdown) {
  driver_.runs_first("SetUserInterface_CommunicationStatus", [] { throw std::out_of_range("status"); });
  EXPECT_THROW(unit_->shutdown(), std::out_of_range);
}

using ShutdownScriptTest = HandheldTest;

TEST_F(ShutdownScriptTest, TheScriptRunsInTheRealShell) {
  remove_file("/tmp/script_ran");
  put_file("/root/.shutdown", "#!/bin/sh\necho shut down > /tmp/script_ran\nexit 3\n");
  chmod("/root/.shutdown", 0755);
  unit_->shutdown();
  EXPECT_EQ(file_text("/tmp/script_ran"), "shut down\n");
  EXPECT_THAT(calls().all(), ElementsAre(SCRIPT, USER_INTERFACE_GONE));
}

}  // namespace
