// The commands that find, describe, watch and stop units.

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
namespace fs = std::filesystem;

/// Starts units that run on by themselves, and stops what is left of them.
class RunningUnitTest : public testing::Test {
protected:
  ~RunningUnitTest() override { unit_command({"stop", "--all"}); }

  static Ending start(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"run", "--detach"});
    return unit_command(options);
  }
  fs::path folder(const std::string& name) const { return fs::path(folder_.path()) / "unit" / name; }

  RuntimeFolder folder_;
};

TEST_F(RunningUnitTest, ADetachedUnitRunsUntilItIsStopped) {
  const Ending ending = start();
  EXPECT_THAT(ending, ExitedWith(0)) << ending.err;
  EXPECT_EQ(ending.out, "unit-1\n");
  EXPECT_EQ(unit_command({"get", "board.handle"}).out, "3\n");
  EXPECT_THAT(unit_command({"stop"}), ExitedWith(0));
  EXPECT_EQ(unit_command({"ps", "--json"}).out, "[]\n");
  EXPECT_FALSE(fs::exists(folder("unit-1")));
}

TEST_F(RunningUnitTest, WithoutAUnitTheCommandSaysHowToStartOne) {
  const Ending ending = unit_command({"get", "board.handle"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "unit: get: no unit is running; start one with \"unit run\"\n");
}

TEST_F(RunningUnitTest, OfSeveralUnitsOneMustBeChosen) {
  start();
  start({"--name", "other"});
  const Ending ending = unit_command({"get", "board.handle"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.err, "unit: get: several units are running; choose one with --unit: other, unit-1\n");
  EXPECT_EQ(unit_command({"get", "-u", "other", "board.handle"}).out, "3\n");
  const Ending wrong = unit_command({"get", "-u", "another", "board.handle"});
  EXPECT_THAT(wrong, ExitedWith(2));
  EXPECT_THAT(wrong.err, HasSubstr("no unit named \"another\""));
  EXPECT_THAT(unit_command({"stop", "other", "unit-1"}), ExitedWith(0));
  EXPECT_EQ(unit_command({"ps", "--json"}).out, "[]\n");
}

TEST_F(RunningUnitTest, ANameServesOneUnitAtATime) {
  start({"--name", "twin"});
  const Ending second = start({"--name", "twin"});
  EXPECT_THAT(second, ExitedWith(2));
  EXPECT_EQ(second.err, "unit: run: a unit named \"twin\" is running\n");
  EXPECT_THAT(start({"--name", "Twin"}), ExitedWith(2));
}

TEST_F(RunningUnitTest, UnitsAreListed) {
  start({"--name", "listed"});
  EXPECT_THAT(unit_command({"ps"}).out, MatchesRegex("NAME    STATE    HOST     STARTED               PID\n"
                                                     "listed  running  running  20[0-9T:-]+Z  [0-9]+\n"));
  const json units = json::parse(unit_command({"ps", "--json"}).out);
  ASSERT_EQ(units.size(), 1U);
  EXPECT_EQ(units[0]["name"], "listed");
  EXPECT_EQ(units[0]["host"]["state"], "running");
}

TEST_F(RunningUnitTest, AUnitsStateIsDescribed) {
  start({"--limit", "processes=400", "--without", "network"});
  const std::string out = unit_command({"status"}).out;
  EXPECT_THAT(out, HasSubstr("name        unit-1\nstate       running\n"));
  EXPECT_THAT(out, HasSubstr("\nnetwork     no\n"));
  EXPECT_THAT(out, ContainsRegex("\nhost        running, unit-host, process [0-9]+ inside\n"));
  EXPECT_EQ(json::parse(unit_command({"status", "--json"}).out)["limits"]["processes"], 400);
}

TEST_F(RunningUnitTest, ThePidsAreThoseOutside) {
  start();
  const json pids = json::parse(unit_command({"pid", "--json"}).out);
  for (const char* name : {"supervisor", "service", "root", "host"}) {
    EXPECT_TRUE(fs::exists("/proc/" + pids[name].dump())) << name;
  }
  EXPECT_EQ(fs::read_symlink("/proc/" + pids["host"].dump() + "/exe").filename(), "unit-host");
  EXPECT_EQ(unit_command({"debug", "--print"}).out, "gdb -iex 'set breakpoint pending on' -iex 'set sysroot /proc/" +
                                                        pids["host"].dump() + "/root' -p " + pids["host"].dump() +
                                                        "\n");
}

TEST_F(RunningUnitTest, LogsAreShownAndFollowed) {
  start();
  EXPECT_THAT(unit_command({"logs", "--host"}).out, MatchesRegex("BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n"));
  EXPECT_THAT(unit_command({"logs"}).out, ContainsRegex("(^|\n)host: BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n"));
  EXPECT_THAT(unit_command({"logs", "--naming"}).out, HasSubstr("omniNames"));
  EXPECT_EQ(unit_command({"logs", "--agent"}).out, "");
  OutsideProgram follow({built_program("unit"), "logs", "-f", "--host"});
  ASSERT_TRUE(eventually([&] { return follow.out().find('\n') != std::string::npos; }));
  unit_command({"call", "GetFanState", "0"});
  EXPECT_TRUE(eventually([&] {
    return testing::Value(follow.out(), ContainsRegex("^BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n(.*\n)*"
                                                      "BASE_HARDWARE::GetFanState index err\n"));
  })) << follow.out();
}

TEST_F(RunningUnitTest, WaitEndsWhenItsConditionHolds) {
  start();
  EXPECT_THAT(unit_command({"wait", "--for", "board.handle=3", "--for", "sysfs.celsius=38.5\n"}), ExitedWith(0));
  OutsideProgram wait({built_program("unit"), "wait", "--for", "board.handle=9"});
  unit_command({"set", "board.handle", "9"});
  EXPECT_THAT(wait.wait(), ExitedWith(0));
  const Ending late = unit_command({"wait", "--for", "dialog", "--timeout", "0.1"});
  EXPECT_THAT(late, ExitedWith(1));
  EXPECT_EQ(late.err, "unit: wait: timed out waiting for dialog\n");
  const Ending unknown = unit_command({"wait", "--for", "board.handel=3"});
  EXPECT_THAT(unknown, ExitedWith(2));
  EXPECT_EQ(unknown.err, "unit: wait: board.handel: no such setting; did you mean \"board.handle\"?\n");
  EXPECT_THAT(unit_command({"wait", "--for", "rain"}), ExitedWith(2));
  EXPECT_THAT(unit_command({"wait"}), ExitedWith(2));
}

TEST_F(RunningUnitTest, TheEndOfAHostIsToldInWords) {
  start();
  const std::string host = json::parse(unit_command({"status", "--json"}).out)["host"]["pid"].dump();
  OutsideProgram wait({built_program("unit"), "wait", "--for", "host-exit"});
  unit_command({"exec", "--", "kill", "-ABRT", host});
  const Ending ending = wait.wait();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.out, "host killed by signal 6 (Aborted)\n");
  EXPECT_THAT(unit_command({"ps"}).out, HasSubstr("  killed by signal 6 (Aborted)  "));
  const Ending call = unit_command({"call", "GetTemperature"});
  EXPECT_THAT(call, ExitedWith(1));
  EXPECT_THAT(unit_command({"debug"}), ExitedWith(1));
}

TEST_F(RunningUnitTest, AUnitEndsWithItsCommandHoweverThatEnds) {
  OutsideProgram run({built_program("unit"), "run", "--json"});
  ASSERT_TRUE(eventually([&] { return run.out().find('\n') != std::string::npos; }));
  run.kill(SIGKILL);
  EXPECT_THAT(run.wait(), EndedBySignal(SIGKILL));
  EXPECT_TRUE(eventually([] { return unit_command({"ps", "--json"}).out == "[]\n"; }));
}

TEST_F(RunningUnitTest, LeftOversOfAUnitAreCleared) {
  start();
  const json pids = json::parse(unit_command({"pid", "--json"}).out);
  kill(pids["supervisor"].get<int>(), SIGKILL);
  EXPECT_TRUE(eventually([] { return unit_command({"ps", "--json"}).out == "[]\n"; }));
  EXPECT_FALSE(fs::exists(folder("unit-1")));
}

}  // namespace
