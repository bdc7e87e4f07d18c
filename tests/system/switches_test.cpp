// The commands for the switches, the cover and the screen of a running unit.

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::HasSubstr;

class SwitchesTest : public CommandTest {
protected:
  /// Presses the power switch and returns the question, once it is on the screen.
  static json question() {
    said("press", {"power"});
    said("wait", {"--for", "dialog=System Prompt", "--timeout", "20"});
    return json::parse(said("dialogs", {"--json"})).back();
  }
  static std::vector<std::string> names_in(const json& calls) {
    std::vector<std::string> names;
    for (const json& call : calls) {
      names.push_back(call["at"]);
    }
    return names;
  }
};

TEST_F(SwitchesTest, TheCoverReachesTheLibrary) {
  said("cover", {"close", "--wait"});
  EXPECT_EQ(said("get", {"sysfs.bl_power"}), "0\n");
  said("cover", {"open", "--wait"});
  EXPECT_EQ(said("get", {"sysfs.bl_power"}), "1\n");
}

TEST_F(SwitchesTest, AnInterruptIsDecimalOrHexadecimal) {
  // 24 and 0x18: bits without effect.
  EXPECT_THAT(command("interrupt", {"--wait", "0x18"}).err, HasSubstr("interrupt value24\n"));
  EXPECT_THAT(command("interrupt", {"--wait", "024"}).err, HasSubstr("interrupt value24\n"));
  const json answer = json::parse(said("interrupt", {"--wait", "--json", "24"}));
  EXPECT_EQ(answer, json::parse(R"({"number":3,"handled":true})"));
}

TEST_F(SwitchesTest, WhatIsNoInterruptIsRefused) {
  for (const char* value : {"cover", "0x1ffffffff", "1.5", "", "08x"}) {
    const Ending ending = command("interrupt", {value});
    EXPECT_THAT(ending, ExitedWith(2));
    EXPECT_EQ(ending.err, "unit: interrupt: VALUE: must be a 32-bit integer such as 256 or 0x100, not \"" +
                              std::string(value) + "\"\n");
  }
  EXPECT_THAT(command("cover", {"ajar"}), ExitedWith(2));
  EXPECT_THAT(command("press", {"reset"}), ExitedWith(2));
}

TEST_F(SwitchesTest, AnInterruptThatIsNotHandledInTimeIsSaidToBe) {
  question();
  const Ending ending = command("cover", {"close", "--wait", "--timeout", "0.2"});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_EQ(ending.err, "unit: cover: interrupt 2: not handled within 0.2 s\n");
}

TEST_F(SwitchesTest, TheQuestionIsShownAndAnsweredInAnyCase) {
  const json shown = question();
  EXPECT_EQ(shown["text"], "Do you want to shutdown?");
  EXPECT_EQ(shown["answer"], nullptr);
  EXPECT_EQ(said("dialogs"), "[System Prompt]\n  Do you want to shutdown?\n  <Cancel>  <Ok>\n");
  const Ending wrong = command("answer", {"Perhaps"});
  EXPECT_THAT(wrong, ExitedWith(2));
  EXPECT_EQ(wrong.err, "unit: answer: no button \"Perhaps\"; buttons: Cancel, Ok\n");
  EXPECT_EQ(said("answer", {"system prompt", "cANCEL"}), "");
  EXPECT_EQ(said("dialogs"), "[System Prompt]\n  Do you want to shutdown?\n  <Cancel>  <Ok>   answered: Cancel\n");
  const Ending again = command("answer", {"Cancel"});
  EXPECT_THAT(again, ExitedWith(1));
  EXPECT_EQ(again.err, "unit: answer: no dialog is waiting\n");
}

TEST_F(SwitchesTest, TheUserInterfaceHasLoaded) {
  EXPECT_EQ(said("ui-done", {"--json"}), "{\"sent\":true}\n");
}

TEST_F(SwitchesTest, ARunningUnitIsShutDown) {
  const Ending ending = command("shutdown", {"--json"}, "ok\n");
  EXPECT_THAT(ending, ExitedWith(0));
  const json document = json::parse(ending.out);
  EXPECT_EQ(document["shut_down"], true);
  EXPECT_EQ(document["calls"][0]["at"], "psdriver.interrupt");
  EXPECT_EQ(said("get", {"power_supply.communication_status"}), "256\n");
}

TEST_F(SwitchesTest, AQuestionThatIsOpenIsTheOneThatIsAnswered) {
  question();
  const Ending ending = command("shutdown", {"--json"}, "OK\n");
  EXPECT_THAT(ending, ExitedWith(0)) << ending.err;
  const json document = json::parse(ending.out);
  EXPECT_EQ(document["shut_down"], true);
  // The calls that the answer causes; the interrupt came before the record was on.
  EXPECT_THAT(names_in(document["calls"]),
              ElementsAre("gui.ShowDialog", "gui.SetDialogSize", "everybody_engine.GetShutdown", "locker.Init_core",
                          "everybody_engine.ShutdownAll", "hw_enumerate.ShutdownEngine", "shell.shutdown",
                          "psdriver.SetUserInterface_CommunicationStatus"));
  EXPECT_EQ(json::parse(said("dialogs", {"--json"})).size(), 2U) << "asked once";
}

TEST_F(SwitchesTest, AnOpenQuestionMayBeAnsweredWithCancel) {
  question();
  const Ending ending = command("shutdown", {}, "2nd\ncancel\n");
  EXPECT_THAT(ending, ExitedWith(0)) << ending.err;
  EXPECT_EQ(ending.out,
            "[System Prompt]\n  Do you want to shutdown?\n  <Cancel>  <Ok>\nanswer: no button \"2nd\"\nanswer: \n"
            "The unit stays on. Calls:\n");
}

}  // namespace
