// The commands that control a running unit, and "unit exec".

#include <signal.h>

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;
using testing::HasSubstr;
namespace fs = std::filesystem;

/// A unit that can ask its user a question.
class DialogTest : public CommandTest {
protected:
  /// The question, once it is on the screen.
  json question() {
    json shown;
    EXPECT_TRUE(eventually([&] {
      shown = json::parse(command("dialogs", {"--json"}).out);
      return !shown.empty();
    }));
    return shown[0];
  }
};

TEST_F(CommandTest, GetPrintsAValue) {
  EXPECT_EQ(command("get", {"board.digital.card_id"}).out, "92881\n");
  EXPECT_EQ(json::parse(command("get", {"--json", "sysfs.celsius"}).out),
            json::parse(R"({"name":"sysfs.celsius","value":"38.5\n"})"));
}

TEST_F(CommandTest, SetShowsInTheUnitsState) {
  EXPECT_THAT(command("set", {"power_supply.temperature", "301"}), ExitedWith(0));
  EXPECT_TRUE(eventually([this] { return run_.out().find(R"("celsius":30.1)") != std::string::npos; }));
}

TEST_F(CommandTest, WhatTheUnitDoesNotTakeIsRefused) {
  const Ending unknown = command("set", {"colour", "1"});
  EXPECT_THAT(unknown, ExitedWith(2));
  EXPECT_EQ(unknown.err, "unit: colour: no such setting\n");
  const Ending wrong = command("set", {"board.handle", "-1"});
  EXPECT_THAT(wrong, ExitedWith(2));
  EXPECT_EQ(wrong.err, "unit: board.handle: must be a whole number from 0 to 2147483647, not -1\n");
  EXPECT_EQ(command("get", {"board.handle"}).out, "3\n");
}

TEST_F(CommandTest, CallAnswersWhatTheOperationDoes) {
  EXPECT_EQ(command("call", {"--json", "GetMaxInterfaces"}).out, "{\"result\":1}\n");
  EXPECT_EQ(command("call", {"read_hw", "3", "1", "0"}).out, "result: 0\nvalue: 92881\n");
}

TEST_F(CommandTest, CallRefusesWhatTheHostRefuses) {
  const Ending ending = command("call", {"Nope"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_THAT(ending.err, HasSubstr("unknown operation \"Nope\""));
}

TEST_F(CommandTest, InterruptReachesTheLibrary) {
  EXPECT_THAT(command("interrupt", {"0x40"}), ExitedWith(0));
  EXPECT_TRUE(eventually([this] { return command("get", {"sysfs.bl_power"}).out == "0\n"; }));
}

TEST_F(DialogTest, TheQuestionIsShownAndAnswered) {
  command("interrupt", {"256"});
  const json shown = question();
  EXPECT_EQ(shown["title"], "System Prompt");
  EXPECT_EQ(shown["text"], "Do you want to shutdown?");
  EXPECT_EQ(shown["answer"], nullptr);
  EXPECT_THAT(command("answer", {"System Prompt", "Cancel"}), ExitedWith(0));
  EXPECT_EQ(json::parse(command("dialogs", {"--json"}).out)[0]["answer"], 1);
  const Ending again = command("answer", {"System Prompt", "Cancel"});
  EXPECT_THAT(again, ExitedWith(1));
  EXPECT_EQ(again.err, "unit: no unanswered dialog \"System Prompt\" has a button \"Cancel\"\n");
}

TEST_F(CommandTest, ARunningUnitIsShutDown) {
  const Ending ending = command("shutdown", {"--running", "--json"}, "ok\n");
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(json::parse(ending.out)["shut_down"], true);
  EXPECT_EQ(command("get", {"power_supply.communication_status"}).out, "256\n");
}

TEST_F(CommandTest, AStateFolderServesOneUnitAtATime) {
  const Ending ending = unit_command({"run", "--once", "--state", state_});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.err, "unit: " + state_ + ": a unit is running on this state folder\n");
}

TEST_F(CommandTest, AUnitEndsWithItsCommandHoweverThatEnds) {
  run_.kill(SIGKILL);
  EXPECT_THAT(run_.wait(), EndedBySignal(SIGKILL));
  EXPECT_TRUE(eventually([this] { return !simulator::sysroot::is_running(state_); }));
  const Ending ending = command("get", {"board.handle"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.err, "unit: " + state_ + ": no unit is running on this state folder\n");
}

TEST(ExecTest, TheStatusIsTheCommands) {
  EXPECT_THAT(unit_command({"exec", "--", "sh", "-c", "exit 7"}), ExitedWith(7));
  EXPECT_THAT(unit_command({"exec", "--", "sh", "-c", "kill -9 $$"}), ExitedWith(137));
}

TEST(ExecTest, TheCommandGetsItsEnvironmentAndItsInput) {
  const Ending ending =
      unit_command({"exec", "--env", "GREETING=hello", "--", "sh", "-c", "cat; echo $GREETING"}, "in\n");
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.out, "in\nhello\n");
  EXPECT_EQ(ending.err, "");
}

TEST(ExecTest, WordsInBracketsAreTakenAsTheyAre) {
  EXPECT_EQ(unit_command({"exec", "--", "echo", "[a,b]", "[c]"}).out, "[a,b] [c]\n");
  EXPECT_THAT(unit_command({"exec", "--", "sh", "-c", "[ -d /tmp ]"}), ExitedWith(0));
}

TEST(ExecTest, BadUsageIsRefused) {
  EXPECT_THAT(unit_command({"exec"}), ExitedWith(2));
  EXPECT_THAT(unit_command({}), ExitedWith(2));
  EXPECT_THAT(unit_command({"run", "--colour"}), ExitedWith(2));
  EXPECT_THAT(unit_command({"exec", "--env", "GREETING", "--", "true"}), ExitedWith(2));
}

TEST(StateFolderTest, AFolderWithOtherThingsInItIsLeftAlone) {
  const fs::path folder = "/tmp/system-test-folder-" + std::to_string(getpid());
  fs::create_directories(folder / "sys");
  const Ending ending = unit_command({"exec", "--state", folder, "--", "true"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.err, "unit: " + folder.string() + ": neither empty nor a unit's state folder\n");
  EXPECT_TRUE(fs::exists(folder / "sys"));
  fs::remove_all(folder);
}

}  // namespace
