// The power switch and the cover: interrupts from the controller, services in processes of their own, one record of
// calls across all of them.

#include <signal.h>
#include <sys/stat.h>

#include <fstream>

#include "unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;

const char QUESTION[] = "System Prompt";
const char BL_POWER[] = "/sys/class/backlight/omap-bl/bl_power";
const char BRIGHTNESS[] = "/sys/class/backlight/omap-bl/brightness";

const char NO_GUI[] = "Handheld_Hardware::FindGuiManagerInstance Missing GuiManager err\n";
const char NO_EVERYBODY[] = "Handheld_Hardware::Missing Everybody Engine err, please load\n";
const char NO_ENUMERATION[] = "Handheld_Hardware::Missing HW Enumeration Engine err, please load\n";

const char EVERYBODY_LINE[] = "Shutting down everybody engine\n";
const char ENUMERATION_LINE[] = "Shutting down hardware enum\n";
const char HARDWARE_LINE[] = "Hardware shutdown\n";

std::string trace_line(int value) {
  return "PowerSwitch:Comm status interrupt value" + std::to_string(value) + "\n";
}

class ShutdownTest : public testing::Test {
protected:
  ShutdownTest() : host_(unit_.with_services().start().host()) {
    load_trace_ = host_.out();
    unit_.recorded();
  }

  /// Raises an interrupt that asks nothing and waits until it has been handled.
  void interrupt(int value) { ASSERT_TRUE(unit_.handled(unit_.interrupt(value))); }

  /// Raises an interrupt that asks, answers, and waits until it has been handled.
  void interrupt_and_answer(int value, const std::string& label) {
    const std::uint64_t number = unit_.interrupt(value);
    ASSERT_TRUE(unit_.model().gui().wait_shown(QUESTION, PATIENCE));
    ASSERT_TRUE(unit_.model().gui().answer(QUESTION, label));
    ASSERT_TRUE(unit_.handled(number));
  }

  /// What the library has written since it was loaded.
  std::string out() const { return host_.out().substr(load_trace_.size()); }

  SimulatedUnit unit_;
  Host host_;
  std::string load_trace_;
};

/// The record of a shutdown request, in parts.
const std::vector<std::string> REQUEST = {"psdriver.interrupt", "locker.take", "orb.lookup", "orb.lookup",
                                          "orb.lookup"};
const std::vector<std::string> ASK = {"gui.ShowDialog"};
const std::vector<std::string> SCREEN = {"gui.ShowDialog", "gui.SetDialogSize"};
const std::vector<std::string> EVERYBODY = {"everybody_engine.GetShutdown", "locker.Init_core",
                                            "everybody_engine.ShutdownAll"};
const std::vector<std::string> ENUMERATION = {"hw_enumerate.ShutdownEngine"};
const std::vector<std::string> HARDWARE = {"/root/.shutdown", "psdriver.SetUserInterface_CommunicationStatus"};

std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

TEST_F(ShutdownTest, AnswerOkShutsEverythingDownInItsOrder) {
  interrupt_and_answer(0x100, "Ok");
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE})));
  EXPECT_EQ(out(), trace_line(0x100) + EVERYBODY_LINE + ENUMERATION_LINE + HARDWARE_LINE);
  EXPECT_EQ(host_.err(), "");
  EXPECT_EQ(unit_.model().power_supply().communication_status(), 0x100);
  EXPECT_TRUE(std::filesystem::exists(unit_.outside("/run/unit/shutdown")));
  EXPECT_THAT(unit_.events(), IsEmpty());
  EXPECT_EQ(unit_.text(BL_POWER), "1\n");
}

TEST_F(ShutdownTest, EveryCallCarriesItsArguments) {
  interrupt_and_answer(0x100, "Ok");
  std::vector<json> arguments;
  for (const json& call : unit_.calls()) {
    arguments.push_back(call["args"]);
  }
  const std::string screen =
      "\r\n\r\n\r\n\r\n\r\n" + std::string(33, ' ') + "Shutting Down\r\n\r\n" + std::string(34, ' ') + "Please Wait";
  EXPECT_THAT(
      arguments,
      ElementsAre(
          json{{"value", 256}}, json::object(), json::parse(R"({"path":["Halcyra","local","GUIManager"]})"),
          json::parse(R"({"path":["Halcyra","local","EVERYBODYENG","1"]})"),
          json::parse(R"({"path":["Halcyra","local","HWENUM_ABLE","1"]})"),
          json{{"title", QUESTION}, {"text", "Do you want to shutdown?"}, {"buttons", "Cancel,1|Ok,0"}, {"wait", 1}},
          json{{"title", "Shutdown"}, {"text", screen}, {"buttons", ""}, {"wait", 0}},
          json{{"title", "Shutdown"}, {"size", "Max"}}, json::object(), json::object(),
          json{{"process", host_.pid()}, {"serial", 1}}, json{{"engine", "SYSTEM_ENGINE1"}}, json::object(),
          json{{"value", 256}}));
}

TEST_F(ShutdownTest, AnswerCancelEndsTheRequest) {
  interrupt_and_answer(0x100, "Cancel");
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK})));
  EXPECT_EQ(out(), trace_line(0x100));
  EXPECT_EQ(unit_.model().power_supply().communication_status(), -1);
  EXPECT_FALSE(std::filesystem::exists(unit_.outside("/run/unit/shutdown")));
}

TEST_F(ShutdownTest, AnyAnswerButOkEndsTheRequest) {
  unit_.fault(Point::GUI_SHOW_DIALOG, {FaultKind::GARBAGE, -3});
  interrupt(0x100);
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK})));
}

TEST_F(ShutdownTest, TheQuestionHoldsUpTheControllersReplies) {
  const std::uint64_t number = unit_.interrupt(0x01);
  ASSERT_TRUE(unit_.model().gui().wait_shown(QUESTION, PATIENCE));
  const OpenCall open = host_.begin("GetChargerStatus");
  ASSERT_TRUE(eventually([this] { return unit_.model().faults().calls(Point::GET_CHARGER_BATTERY_STATUS) == 1; }));
  EXPECT_EQ(host_.call("GetBacklight")["level"], 100);
  EXPECT_FALSE(open.answered());
  unit_.model().gui().answer(QUESTION, "Cancel");
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_EQ(json::parse(open.answer())["result"], true);
}

TEST_F(ShutdownTest, ASecondRequestMakesASecondCore) {
  interrupt_and_answer(0x02, "Ok");
  unit_.recorded();
  interrupt_and_answer(0x04, "Ok");
  for (const json& call : unit_.calls()) {
    EXPECT_TRUE(call["at"] != "everybody_engine.ShutdownAll" || call["args"]["serial"] == 2);
  }
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE})));
}

// The file of the cover step is a pipe here: whoever writes to it waits for its reader.
TEST_F(ShutdownTest, TheCoverStepComesLast) {
  unit_.fault(Point::SET_USER_INTERFACE_COMMUNICATION_STATUS, {FaultKind::FAIL});
  std::filesystem::remove(unit_.outside(BL_POWER));
  ASSERT_EQ(mkfifo(unit_.outside(BL_POWER).c_str(), 0666), 0);
  std::filesystem::permissions(unit_.outside(BL_POWER), std::filesystem::perms(0666));
  const std::uint64_t number = unit_.interrupt(0x141);
  ASSERT_TRUE(unit_.model().gui().wait_shown(QUESTION, PATIENCE));
  unit_.model().gui().answer(QUESTION, "Ok");
  const auto everything = joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE, {"events.send"}});
  ASSERT_TRUE(eventually([&] { return unit_.call_names() == everything; }));
  EXPECT_FALSE(unit_.model().power_supply().wait_interrupt_handled(number, std::chrono::milliseconds(0)));
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_EQ(unit_.call_names(), everything);
  EXPECT_THAT(unit_.events(),
              ElementsAre(event("Handheld_Hardware::shutdown()", "Power Supply Driver Failure: Shutdown")));
}

TEST_F(ShutdownTest, ACoverClosedDuringTheQuestionIsFollowedAfterCancelToo) {
  interrupt_and_answer(0x41, "Cancel");
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  EXPECT_EQ(out(), trace_line(0x41));
}

TEST_F(ShutdownTest, ACoverClosedDuringTheQuestionIsFollowedAfterOkToo) {
  interrupt_and_answer(0x41, "Ok");
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  EXPECT_EQ(out(), trace_line(0x41) + EVERYBODY_LINE + ENUMERATION_LINE + HARDWARE_LINE);
}

TEST_F(ShutdownTest, TheCoverIsFollowedFromClosedToOpen) {
  interrupt(0x00);
  EXPECT_EQ(unit_.text(BL_POWER), "1\n");
  interrupt(0x40);
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  unit_.set("sysfs.bl_power", "5");
  interrupt(0x40);
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  interrupt(0x00);
  EXPECT_EQ(unit_.text(BL_POWER), "1");
  unit_.set("sysfs.bl_power", "7");
  interrupt(0x00);
  EXPECT_EQ(unit_.text(BL_POWER), "7");
  EXPECT_EQ(out(), trace_line(0) + trace_line(0x40) + trace_line(0x40) + trace_line(0) + trace_line(0));
}

TEST_F(ShutdownTest, ABacklightThatIsNotThereIsPassedOver) {
  std::filesystem::remove_all(unit_.outside("/sys/class/backlight"));
  interrupt(0x60);
  EXPECT_EQ(out(), trace_line(0x60));
  EXPECT_EQ(host_.err(), "");
  EXPECT_THAT(unit_.events(), IsEmpty());
}

TEST_F(ShutdownTest, TheBacklightIsRaisedToTheDevicesMaximum) {
  interrupt(0x20);
  EXPECT_EQ(unit_.text(BRIGHTNESS), "255");
  EXPECT_EQ(unit_.text(BL_POWER), "1\n");
  EXPECT_THAT(unit_.call_names(), ElementsAre("psdriver.interrupt", "locker.take"));
  EXPECT_EQ(host_.call("GetBacklight")["level"], 255);
}

TEST_F(ShutdownTest, WithoutAMaximumTheBacklightGoesDown) {
  unit_.set("sysfs.max_brightness", nullptr);
  interrupt(0x20);
  EXPECT_EQ(unit_.text(BRIGHTNESS), "0");
}

TEST_F(ShutdownTest, OtherBitsDoNothing) {
  for (const int value : {0x08, 0x10, 0x18, 0x80, 0x7ffffe80, static_cast<int>(0x80000000U)}) {
    interrupt(value);
    EXPECT_EQ(unit_.text(BRIGHTNESS), "100\n") << value;
    EXPECT_EQ(unit_.text(BL_POWER), "1\n") << value;
  }
  EXPECT_THAT(unit_.model().gui().dialogs(), IsEmpty());
  EXPECT_THAT(out(), testing::EndsWith(trace_line(-2147483647 - 1)));
}

TEST_F(ShutdownTest, AllBitsBrightenAskAndCloseTheCover) {
  interrupt_and_answer(-1, "Cancel");
  EXPECT_EQ(unit_.text(BRIGHTNESS), "255");
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  EXPECT_EQ(out(), trace_line(-1));
}

TEST_F(ShutdownTest, TheDisplayIsBrightBeforeTheQuestion) {
  const std::uint64_t number = unit_.interrupt(0x120);
  ASSERT_TRUE(unit_.model().gui().wait_shown(QUESTION, PATIENCE));
  EXPECT_EQ(unit_.text(BRIGHTNESS), "255");
  unit_.model().gui().answer(QUESTION, "Ok");
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_EQ(unit_.model().power_supply().communication_status(), 0x100);
}

TEST_F(ShutdownTest, TheScriptsStatusIsNotLookedAt) {
  unit_.write("/root/.shutdown", "#!/bin/sh\nexit 7\n");
  interrupt_and_answer(0x100, "Ok");
  EXPECT_EQ(unit_.model().power_supply().communication_status(), 0x100);
}

TEST_F(ShutdownTest, WithoutAScriptTheControllerIsTold) {
  std::filesystem::remove(unit_.outside("/root/.shutdown"));
  interrupt_and_answer(0x100, "Ok");
  EXPECT_EQ(unit_.model().power_supply().communication_status(), 0x100);
  EXPECT_EQ(host_.err(), "sh: 1: /root/.shutdown: not found\n");
}

TEST_F(ShutdownTest, AnEventLogThatRefusesDoesNotHoldUpTheCover) {
  unit_.fault(Point::SET_USER_INTERFACE_COMMUNICATION_STATUS, {FaultKind::FAIL});
  unit_.fault(Point::EVENTS_SEND, {FaultKind::FAIL});
  interrupt_and_answer(0x141, "Ok");
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  EXPECT_THAT(unit_.events(), IsEmpty());
}

TEST_F(ShutdownTest, TheHostShutsDownByItself) {
  EXPECT_EQ(host_.call("shutdown"), json::object());
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(HARDWARE));
  EXPECT_EQ(out(), "");
}

TEST_F(ShutdownTest, AGuiManagerFoundEarlierIsStillAsked) {
  interrupt_and_answer(0x100, "Cancel");
  unit_.behave(Service::GUI_MANAGER, ServiceBehaviour::ABSENT);
  interrupt_and_answer(0x100, "Cancel");
  EXPECT_EQ(host_.err(), NO_GUI);
  EXPECT_EQ(unit_.model().power_supply().communication_status(), -1);
}

TEST_F(ShutdownTest, AGuiManagerThatTurnsIntoSomethingElseIsForgotten) {
  interrupt_and_answer(0x100, "Cancel");
  unit_.behave(Service::GUI_MANAGER, ServiceBehaviour::WRONG_TYPE);
  unit_.recorded();
  interrupt(0x100);
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, EVERYBODY, ENUMERATION, HARDWARE})));
  EXPECT_EQ(host_.err(), "");
}

TEST_F(ShutdownTest, AGuiManagerThatDiesWithItsQuestionOpenLetsTheShutdownGoOn) {
  const std::uint64_t number = unit_.interrupt(0x140);
  ASSERT_TRUE(unit_.model().gui().wait_shown(QUESTION, PATIENCE));
  unit_.model().services().set_behaviour(Service::GUI_MANAGER, ServiceBehaviour::DIES_IN_CALL);
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK, EVERYBODY, ENUMERATION, HARDWARE})));
  EXPECT_EQ(unit_.text(BL_POWER), "0");
}

TEST_F(ShutdownTest, AServantThatNeverAnswersHoldsTheShutdownUp) {
  unit_.fault(Point::HW_ENUMERATE_SHUTDOWN_ENGINE, {FaultKind::NO_REPLY});
  const std::uint64_t number = unit_.interrupt(0x100);
  ASSERT_TRUE(unit_.model().gui().wait_shown(QUESTION, PATIENCE));
  unit_.model().gui().answer(QUESTION, "Ok");
  ASSERT_TRUE(eventually([this] { return unit_.model().faults().calls(Point::HW_ENUMERATE_SHUTDOWN_ENGINE) == 1; }));
  EXPECT_FALSE(unit_.model().power_supply().wait_interrupt_handled(number, std::chrono::milliseconds(300)));
  EXPECT_EQ(unit_.model().power_supply().communication_status(), -1);
  EXPECT_THAT(host_.leave(), ExitedWith(0));
}

// How a service behaves, whether there is still a question, what is called and what is said.
struct Failing {
  std::string name;
  Service service;
  ServiceBehaviour behaviour;
  bool asks;
  std::vector<std::string> calls;
  std::string progress;
  std::string errors;
};

class FailingServiceTest : public ShutdownTest, public testing::WithParamInterface<Failing> {};

TEST_P(FailingServiceTest, TheUnitIsShutDownAllTheSame) {
  unit_.model().services().set_slow_ms(GetParam().service, 150);
  unit_.behave(GetParam().service, GetParam().behaviour);
  if (GetParam().asks) {
    interrupt_and_answer(0x140, "Ok");
  } else {
    interrupt(0x140);
  }
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(GetParam().calls));
  EXPECT_EQ(out(), trace_line(0x140) + GetParam().progress);
  EXPECT_EQ(host_.err(), GetParam().errors);
  EXPECT_EQ(unit_.model().power_supply().communication_status(), 0x100);
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  EXPECT_EQ(host_.call("GetChargerStatus")["result"], true);
}

const std::string ALL_LINES = std::string(EVERYBODY_LINE) + ENUMERATION_LINE + HARDWARE_LINE;
const std::string NO_EVERYBODY_LINES = std::string(ENUMERATION_LINE) + HARDWARE_LINE;
const std::vector<std::string> ALL_CALLS = joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE});
const std::vector<std::string> NO_GUI_CALLS = joined({REQUEST, EVERYBODY, ENUMERATION, HARDWARE});
const std::vector<std::string> ASKED_ONCE = joined({REQUEST, ASK, EVERYBODY, ENUMERATION, HARDWARE});
const std::vector<std::string> NO_EVERYBODY_CALLS = joined({REQUEST, ASK, SCREEN, ENUMERATION, HARDWARE});
const std::vector<std::string> EVERYBODY_FAILS =
    joined({REQUEST, ASK, SCREEN, {"everybody_engine.GetShutdown"}, ENUMERATION, HARDWARE});
const std::vector<std::string> NO_ENUMERATION_CALLS = joined({REQUEST, ASK, SCREEN, EVERYBODY, HARDWARE});

INSTANTIATE_TEST_SUITE_P(
    Services, FailingServiceTest,
    testing::Values(
        Failing{"AbsentGui", Service::GUI_MANAGER, ServiceBehaviour::ABSENT, false, NO_GUI_CALLS, ALL_LINES, NO_GUI},
        Failing{"WrongGui", Service::GUI_MANAGER, ServiceBehaviour::WRONG_TYPE, false, NO_GUI_CALLS, ALL_LINES, ""},
        Failing{"DyingGui", Service::GUI_MANAGER, ServiceBehaviour::DIES_IN_CALL, false, ASKED_ONCE, ALL_LINES, ""},
        Failing{"ThrowingGui", Service::GUI_MANAGER, ServiceBehaviour::THROWS, false, ALL_CALLS, ALL_LINES, ""},
        Failing{"SlowGui", Service::GUI_MANAGER, ServiceBehaviour::SLOW, true, ALL_CALLS, ALL_LINES, ""},
        Failing{"AbsentEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::ABSENT, true, NO_EVERYBODY_CALLS,
                NO_EVERYBODY_LINES, NO_EVERYBODY},
        Failing{"WrongEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::WRONG_TYPE, true, NO_EVERYBODY_CALLS,
                NO_EVERYBODY_LINES, "EveryBdyPtr is null\n"},
        Failing{"DyingEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::DIES_IN_CALL, true, EVERYBODY_FAILS,
                ALL_LINES, ""},
        Failing{"ThrowingEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::THROWS, true, EVERYBODY_FAILS,
                ALL_LINES, ""},
        Failing{"SlowEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::SLOW, true, ALL_CALLS, ALL_LINES, ""},
        Failing{"AbsentEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::ABSENT, true, NO_ENUMERATION_CALLS,
                ALL_LINES, NO_ENUMERATION},
        Failing{"WrongEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::WRONG_TYPE, true, NO_ENUMERATION_CALLS,
                ALL_LINES, "HwEnumPtr is null\n"},
        Failing{"DyingEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::DIES_IN_CALL, true, ALL_CALLS, ALL_LINES,
                ""},
        Failing{"ThrowingEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::THROWS, true, ALL_CALLS, ALL_LINES, ""},
        Failing{"SlowEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::SLOW, true, ALL_CALLS, ALL_LINES, ""}),
    [](const auto& failing) { return failing.param.name; });

// One call that goes wrong while its service is well, and what is called then.
struct FailingCall {
  Point point;
  Fault fault;
  std::vector<std::string> calls;
};

class FailingCallTest : public ShutdownTest, public testing::WithParamInterface<FailingCall> {};

TEST_P(FailingCallTest, TheNextStepFollows) {
  unit_.fault(GetParam().point, GetParam().fault);
  interrupt_and_answer(0x100, "Ok");
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(GetParam().calls));
  EXPECT_EQ(out(), trace_line(0x100) + ALL_LINES);
  EXPECT_EQ(host_.err(), "");
  EXPECT_EQ(unit_.model().power_supply().communication_status(), 0x100);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, FailingCallTest,
    testing::Values(FailingCall{Point::GUI_SHOW_DIALOG, {FaultKind::FAIL, 0, 2}, ALL_CALLS},
                    FailingCall{Point::GUI_SET_DIALOG_SIZE, {FaultKind::FAIL}, ALL_CALLS},
                    FailingCall{Point::EVERYBODY_GET_SHUTDOWN, {FaultKind::GARBAGE}, EVERYBODY_FAILS},
                    FailingCall{Point::EVERYBODY_SHUTDOWN_ALL, {FaultKind::FAIL}, ALL_CALLS},
                    FailingCall{Point::HW_ENUMERATE_SHUTDOWN_ENGINE, {FaultKind::FAIL}, ALL_CALLS}));

// A unit without naming service and services: whoever is there is shut down.
TEST(LonelyUnitTest, WithoutANamingServiceTheUnitIsShutDown) {
  SimulatedUnit unit;
  const Host host = unit.start().host();
  ASSERT_TRUE(unit.handled(unit.interrupt(0x100)));
  EXPECT_EQ(host.err(), std::string(NO_GUI) + NO_EVERYBODY + NO_ENUMERATION);
  EXPECT_EQ(unit.model().power_supply().communication_status(), 0x100);
}

}  // namespace
