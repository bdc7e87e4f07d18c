#include <algorithm>
#include <cstdio>

#include "tests/doubles/failing_allocation.h"
#include "tests/unit/handheld/power_switch_under_test.h"

// Shutdown with a service that is missing, has another type, or fails during a call.

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::FakeServices;
using doubles::file_text;
using doubles::sent_events;
using testing::ElementsAre;

const char NO_GUI_MANAGER[] = "Handheld_Hardware::FindGuiManagerInstance Missing GuiManager err\n";
const char NO_EVERYBODY[] = "Handheld_Hardware::Missing Everybody Engine err, please load\n";
const char NO_ENUMERATION[] = "Handheld_Hardware::Missing HW Enumeration Engine err, please load\n";
const char WITHOUT_EVERYBODY[] = "Shutting down hardware enum\nHardware shutdown\n";

class ShutdownFailureTest : public PowerSwitchSurroundings {
protected:
  /// The whole shutdown without the given steps.
  static Calls without(std::initializer_list<std::string> left_out) {
    Calls steps;
    for (const std::string& step : whole_shutdown()) {
      if (std::find(left_out.begin(), left_out.end(), step) == left_out.end()) {
        steps.push_back(step);
      }
    }
    return steps;
  }
};

TEST_F(ShutdownFailureTest, WithoutAGuiManagerNoQuestionIsAskedAndTheShutdownGoesAhead) {
  doubles::unbind_service(FakeServices::GUI_MANAGER);
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), without({QUESTION, SCREEN, SCREEN_SIZE}));
  EXPECT_EQ(output_.err(), NO_GUI_MANAGER);
  EXPECT_EQ(output_.out(), trace(256) + PROGRESS);
}

TEST_F(ShutdownFailureTest, AGuiManagerOfAnotherTypeIsNoGuiManager) {
  doubles::bind_service(FakeServices::GUI_MANAGER, services_.hw_enumeration());
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), without({QUESTION, SCREEN, SCREEN_SIZE}));
  EXPECT_EQ(output_.err(), "");
}

TEST_F(ShutdownFailureTest, WithoutAnEverybodyEngineItsProgressLineIsMissing) {
  doubles::unbind_service(FakeServices::EVERYBODY_ENGINE);
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), without({GET_SHUTDOWN, MAKE_CORE, shutdown_all()}));
  EXPECT_EQ(output_.err(), NO_EVERYBODY);
  EXPECT_EQ(output_.out(), trace(256) + WITHOUT_EVERYBODY);
}

TEST_F(ShutdownFailureTest, AnEverybodyEngineOfAnotherTypeIsReportedAndPassedOver) {
  doubles::bind_service(FakeServices::EVERYBODY_ENGINE, services_.gui_manager());
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), without({GET_SHUTDOWN, MAKE_CORE, shutdown_all()}));
  EXPECT_EQ(output_.err(), "EveryBdyPtr is null\n");
  EXPECT_EQ(output_.out(), trace(256) + WITHOUT_EVERYBODY);
}

TEST_F(ShutdownFailureTest, WithoutAnEnumerationEngineItsProgressLineIsPrintedAllTheSame) {
  doubles::unbind_service(FakeServices::HW_ENUMERATION);
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), without({SHUTDOWN_HW_ENUMERATION}));
  EXPECT_EQ(output_.err(), NO_ENUMERATION);
  EXPECT_EQ(output_.out(), trace(256) + PROGRESS);
}

TEST_F(ShutdownFailureTest, AnEnumerationEngineOfAnotherTypeIsReportedAndPassedOver) {
  doubles::bind_service(FakeServices::HW_ENUMERATION, services_.gui_manager());
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), without({SHUTDOWN_HW_ENUMERATION}));
  EXPECT_EQ(output_.err(), "HwEnumPtr is null\n");
}

TEST_F(ShutdownFailureTest, WithNoServiceAtAllTheHardwareIsShutDown) {
  doubles::reset_framework();
  Handheld_Hardware::PowerSwitch(0x140);
  EXPECT_THAT(calls().all(), ElementsAre(TAKE_LOCK, FIND_GUI_MANAGER, FIND_EVERYBODY_ENGINE, FIND_HW_ENUMERATION,
                                         SCRIPT, USER_INTERFACE_GONE, GIVE_LOCK_BACK));
  EXPECT_EQ(output_.err(), std::string(NO_GUI_MANAGER) + NO_EVERYBODY + NO_ENUMERATION);
  EXPECT_EQ(output_.out(), trace(0x140) + WITHOUT_EVERYBODY);
  EXPECT_EQ(file_text(POWER_FILE), "0");
}

TEST_F(ShutdownFailureTest, LookupsThatFailLaterUseWhatAnEarlierRequestFound) {
  services_.user_answers(1);
  Handheld_Hardware::PowerSwitch(0x100);
  doubles::reset_framework();
  services_.user_answers(0);
  calls().clear();
  const std::size_t written = output_.out().size();
  Handheld_Hardware::PowerSwitch(0x100);
  EXPECT_EQ(calls().all(), whole_shutdown());
  EXPECT_EQ(output_.err(), std::string(NO_GUI_MANAGER) + NO_EVERYBODY + NO_ENUMERATION);
  EXPECT_EQ(output_.out().substr(written), trace(256) + PROGRESS);
}

/// A text for a service that cannot be copied, and the call that is then missing.
struct FailedCopy {
  const char* name;
  std::size_t size;
  unsigned int nth;
  const char* missing;
};

class FailedCopyTest : public ShutdownFailureTest, public testing::WithParamInterface<FailedCopy> {};

TEST_P(FailedCopyTest, LeavesItsStepOutAndTheNextOneFollows) {
  {
    const doubles::FailingAllocation no_copy(GetParam().nth, GetParam().size);
    EXPECT_NO_THROW(Handheld_Hardware::PowerSwitch(0x140));
    EXPECT_TRUE(no_copy.has_failed());
  }
  EXPECT_EQ(calls().all(), without({GetParam().missing}));
  EXPECT_EQ(output_.out(), trace(0x140) + PROGRESS);
  EXPECT_EQ(file_text(POWER_FILE), "0");
}

const std::size_t SCREEN_TEXT_SIZE = sizeof SCREEN - sizeof "ShowDialog [Shutdown] [" - sizeof "] [] 0" + 2;

INSTANTIATE_TEST_SUITE_P(Texts, FailedCopyTest,
                         testing::Values(FailedCopy{"ScreenTitle", sizeof "Shutdown", 1, SCREEN},
                                         FailedCopy{"ScreenText", SCREEN_TEXT_SIZE, 1, SCREEN},
                                         FailedCopy{"NoButtons", sizeof "", 1, SCREEN},
                                         FailedCopy{"TitleOfTheSize", sizeof "Shutdown", 2, SCREEN_SIZE},
                                         FailedCopy{"Size", sizeof "Max", 1, SCREEN_SIZE},
                                         FailedCopy{"Engine", sizeof "SYSTEM_ENGINE1", 1, SHUTDOWN_HW_ENUMERATION}),
                         [](const auto& copy) { return copy.param.name; });

TEST_F(ShutdownFailureTest, ACoverFileThatCannotBeWrittenForLackOfMemoryIsPassedOverWithTheCoverNoted) {
  {
    const doubles::FailingAllocation no_file_buffer(1, BUFSIZ);
    EXPECT_NO_THROW(Handheld_Hardware::PowerSwitch(0x40));
    EXPECT_TRUE(no_file_buffer.has_failed());
  }
  EXPECT_TRUE(cover_closed);
  EXPECT_EQ(calls().all().back(), GIVE_LOCK_BACK);
  {
    const doubles::FailingAllocation no_file_buffer(1, BUFSIZ);
    EXPECT_NO_THROW(Handheld_Hardware::PowerSwitch(0));
    EXPECT_TRUE(no_file_buffer.has_failed());
  }
  EXPECT_FALSE(cover_closed);
  EXPECT_EQ(output_.err(), "");
  EXPECT_THAT(sent_events(), testing::IsEmpty());
}

/// A failing step, its call in the log, and the calls that are then missing.
struct FailingStep {
  const char* operation;
  std::vector<std::string> missing;
};

void PrintTo(const FailingStep& failing_step, std::ostream* stream) {
  *stream << failing_step.operation << " leaves out " << testing::PrintToString(failing_step.missing);
}

class FailingStepTest : public ShutdownFailureTest, public testing::WithParamInterface<FailingStep> {
protected:
  void expect_the_rest() {
    driver_.interrupt(0x140);
    Calls expected;
    for (const std::string& step : whole_shutdown()) {
      const bool missing = std::find(GetParam().missing.begin(), GetParam().missing.end(), step.substr(0, 11)) !=
                           GetParam().missing.end();
      if (!missing) {
        expected.push_back(step);
      }
    }
    EXPECT_EQ(calls().all(), expected);
    EXPECT_EQ(output_.out(), trace(0x140) + PROGRESS);
    EXPECT_EQ(output_.err(), "");
    EXPECT_EQ(file_text(POWER_FILE), "0");
  }
};

TEST_P(FailingStepTest, AServantThatHasDiedIsPassedOver) {
  services_.runs_first(GetParam().operation, [] { throw CORBA::COMM_FAILURE(); });
  expect_the_rest();
}

TEST_P(FailingStepTest, AServantThatCannotBeReachedIsPassedOver) {
  services_.runs_first(GetParam().operation, [] { throw CORBA::TRANSIENT(); });
  expect_the_rest();
}

TEST_P(FailingStepTest, AServantThatIsGoneIsPassedOver) {
  services_.runs_first(GetParam().operation, [] { throw CORBA::OBJECT_NOT_EXIST(); });
  expect_the_rest();
}

INSTANTIATE_TEST_SUITE_P(Steps, FailingStepTest,
                         testing::Values(FailingStep{"ShowDialog waiting", {}}, FailingStep{"ShowDialog", {}},
                                         FailingStep{"SetDialogSize", {}},
                                         FailingStep{"GetShutdown", {"make locker", "ShutdownAll"}},
                                         FailingStep{"ShutdownAll", {}}, FailingStep{"ShutdownEngine", {}}),
                         [](const auto& step) {
                           std::string name = step.param.operation;
                           name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
                           return name;
                         });

TEST_F(ShutdownFailureTest, ABacklightThatCannotBeRaisedIsReportedAndTheRequestGoesOn) {
  {
    const doubles::FailingAllocation no_file_buffer(1, BUFSIZ);
    Handheld_Hardware::PowerSwitch(0x120);
    EXPECT_TRUE(no_file_buffer.has_failed());
  }
  Calls expected = whole_shutdown();
  expected.insert(expected.begin() + 1, "event Handheld_Hardware::setMaxBacklight()");
  EXPECT_EQ(calls().all(), expected);
  EXPECT_EQ(output_.err(), "Handheld_Hardware::setMaxBacklight err\n");
  EXPECT_THAT(sent_events(),
              ElementsAre(failure_event("Handheld_Hardware::setMaxBacklight()",
                                        "/sys/class/backlight/omap-bl/max_brightness or brightness missing")));
}

TEST_F(ShutdownFailureTest, AnEventLogThatRefusesTheBacklightsEventDoesNotKeepTheRequestBack) {
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  {
    const doubles::FailingAllocation no_file_buffer(1, BUFSIZ);
    EXPECT_NO_THROW(Handheld_Hardware::PowerSwitch(0x160));
  }
  EXPECT_EQ(calls().count(SCRIPT), 1U);
  EXPECT_EQ(file_text(POWER_FILE), "0");
  EXPECT_EQ(calls().all().back(), GIVE_LOCK_BACK);
}

TEST_F(ShutdownFailureTest, AnEverybodyEngineWithoutShutdownInterfaceIsPassedOver) {
  services_.has_no_shutdown_interface();
  Handheld_Hardware::PowerSwitch(0x100);
  Calls made = calls().all();
  made.erase(std::remove(made.begin(), made.end(), MAKE_CORE), made.end());
  EXPECT_EQ(made, without({MAKE_CORE, shutdown_all()}));
  EXPECT_EQ(output_.out(), trace(256) + PROGRESS);
}

TEST_F(ShutdownFailureTest, ADriverFailureOfTheLastStepIsOneEventAndTheCoverStepFollows) {
  driver_.fails("SetUserInterface_CommunicationStatus");
  Handheld_Hardware::PowerSwitch(0x140);
  EXPECT_THAT(sent_events(),
              ElementsAre(failure_event("Handheld_Hardware::shutdown()", "Power Supply Driver Failure: Shutdown")));
  EXPECT_EQ(file_text(POWER_FILE), "0");
  EXPECT_EQ(calls().all().back(), GIVE_LOCK_BACK);
}

TEST_F(ShutdownFailureTest, AnEventLogThatRefusesTheLastEventDoesNotKeepTheCoverStepBack) {
  driver_.fails("SetUserInterface_CommunicationStatus");
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  EXPECT_NO_THROW(Handheld_Hardware::PowerSwitch(0x140));
  EXPECT_EQ(file_text(POWER_FILE), "0");
  EXPECT_EQ(calls().all().back(), GIVE_LOCK_BACK);
}

}  // namespace
