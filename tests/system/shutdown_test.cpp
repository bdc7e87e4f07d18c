// The power switch and the cover: interrupts from the controller, services in separate processes, one call record for
// all of them.

#include <sys/stat.h>

#include "tests/system/shutdown_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

TEST_F(ShutdownTest, AnswerOkShutsEverythingDownInItsOrder) {
  interrupt_and_answer(0x100, "Ok");
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE})));
  EXPECT_EQ(out(), trace_line(0x100) + EVERYBODY_LINE + ENUMERATION_LINE + HARDWARE_LINE);
  EXPECT_EQ(host_.err(), "");
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), 0x100);
  EXPECT_TRUE(unit_.text("/run/unit/shutdown"));
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
          json{{"process", host_.pid()}, {"serial", 1}}, json{{"engine", "SYSTEM_ENGINE1"}},
          json::parse(R"({"arguments":[]})"), json{{"value", 256}}));
}

TEST_F(ShutdownTest, AnswerCancelEndsTheRequest) {
  interrupt_and_answer(0x100, "Cancel");
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK})));
  EXPECT_EQ(out(), trace_line(0x100));
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), -1);
  EXPECT_FALSE(unit_.text("/run/unit/shutdown"));
}

TEST_F(ShutdownTest, AnyAnswerButOkEndsTheRequest) {
  unit_.fault(Point::GUI_SHOW_DIALOG, {FaultKind::GARBAGE, -3});
  interrupt(0x100);
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK})));
}

TEST_F(ShutdownTest, TheQuestionHoldsUpTheControllersReplies) {
  const std::uint64_t number = unit_.interrupt(0x01);
  ASSERT_TRUE(unit_.shows(QUESTION));
  OpenCall open = host_.begin("GetChargerStatus");
  ASSERT_TRUE(eventually([this] { return unit_.calls_of(Point::GET_CHARGER_BATTERY_STATUS) == 1; }));
  EXPECT_EQ(host_.call("GetBacklight")["level"], 100);
  EXPECT_FALSE(open.answered());
  unit_.answer(QUESTION, "Cancel");
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_EQ(open.answer()["result"], true);
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

// The file of the cover step is a pipe here: the writer waits for its reader.
TEST_F(ShutdownTest, TheCoverStepComesLast) {
  unit_.fault(Point::SET_USER_INTERFACE_COMMUNICATION_STATUS, {FaultKind::FAIL});
  const std::string file(BL_POWER);
  unit_.shell("rm " + file + "; mkfifo -m 666 " + file);
  const std::uint64_t number = unit_.interrupt(0x141);
  ASSERT_TRUE(unit_.shows(QUESTION));
  unit_.answer(QUESTION, "Ok");
  const auto everything = joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE, {"events.send"}});
  ASSERT_TRUE(eventually([&] { return unit_.call_names() == everything; }));
  EXPECT_FALSE(unit_.handled(number, std::chrono::milliseconds(0)));
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
  unit_.shell("rm -r /sys/class/backlight");
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
  EXPECT_THAT(unit_.dialogs(), IsEmpty());
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
  ASSERT_TRUE(unit_.shows(QUESTION));
  EXPECT_EQ(unit_.text(BRIGHTNESS), "255");
  unit_.answer(QUESTION, "Ok");
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), 0x100);
}

TEST_F(ShutdownTest, TheScriptsStatusIsNotLookedAt) {
  unit_.write("/root/.shutdown", "#!/bin/sh\nexit 7\n");
  interrupt_and_answer(0x100, "Ok");
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), 0x100);
}

TEST_F(ShutdownTest, WithoutAScriptTheControllerIsTold) {
  unit_.shell("rm /root/.shutdown");
  interrupt_and_answer(0x100, "Ok");
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), 0x100);
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
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), -1);
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
  ASSERT_TRUE(unit_.shows(QUESTION));
  unit_.set("services.gui_manager.behaviour", "dies_in_call");
  ASSERT_TRUE(unit_.handled(number));
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(joined({REQUEST, ASK, EVERYBODY, ENUMERATION, HARDWARE})));
  EXPECT_EQ(unit_.text(BL_POWER), "0");
}

TEST_F(ShutdownTest, AServantThatNeverAnswersHoldsTheShutdownUp) {
  unit_.fault(Point::HW_ENUMERATE_SHUTDOWN_ENGINE, {FaultKind::NO_REPLY});
  const std::uint64_t number = unit_.interrupt(0x100);
  ASSERT_TRUE(unit_.shows(QUESTION));
  unit_.answer(QUESTION, "Ok");
  ASSERT_TRUE(eventually([this] { return unit_.calls_of(Point::HW_ENUMERATE_SHUTDOWN_ENGINE) == 1; }));
  EXPECT_FALSE(unit_.handled(number, std::chrono::milliseconds(300)));
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), -1);
  EXPECT_THAT(host_.leave(), ExitedWith(0));
}

}  // namespace
