// Commands that run in the unit: streams, terminals, signals, their end.

#include <signal.h>

#include "tests/unit/simulator/agent/agent_fixture.h"

namespace {

using namespace agent_test;
using testing::HasSubstr;

class CommandsTest : public testing::Test {
protected:
  CommandsTest() { agent_.set_up(); }

  RealAgent agent_;
};

TEST_F(CommandsTest, OutputErrorsAndStatusAreTheCommands) {
  EXPECT_EQ(agent_.run({"sh", "-c", "echo out; echo err >&2; exit 3"}),
            (Json{{"status", 3}, {"out", "out\n"}, {"err", "err\n"}}));
}

TEST_F(CommandsTest, ASignalThatEndsItIsNamed) {
  EXPECT_EQ(agent_.run({"sh", "-c", "kill -9 $$"}), (Json{{"signal", 9}, {"out", ""}, {"err", ""}}));
}

TEST_F(CommandsTest, WhatCannotBeStartedHasTheStatusOfAShell) {
  EXPECT_EQ(agent_.run({"no-such-program"}),
            (Json{{"error", "no-such-program: No such file or directory"}, {"status", 127}, {"out", ""}, {"err", ""}}));
  EXPECT_EQ(agent_.run({"/etc/hosts"})["status"], 126);
}

TEST_F(CommandsTest, EnvironmentAndDirectoryAreSet) {
  const Json end = agent_.run({"sh", "-c", "echo $COLOUR $HOME; pwd"},
                              {{"environment", {{"COLOUR", "red"}, {"HOME", "/tmp"}}}, {"directory", "/usr"}});
  EXPECT_EQ(end["out"], "red /tmp\n/usr\n");
}

TEST_F(CommandsTest, InputReachesTheCommandUntilItsEnd) {
  const Json started = agent_.request("exec.start", {{"argv", {"cat"}}, {"stdin", true}});
  const std::uint32_t stream = started["stream"];
  agent_.input(stream, "one\n");
  ASSERT_TRUE(agent_.shows(stream, "one\n"));
  agent_.input(stream, "two\n");
  agent_.request("exec.control", {{"stream", stream}, {"eof", true}});
  EXPECT_EQ(agent_.notice("exit")["status"], 0);
  EXPECT_EQ(agent_.bytes(stream), "one\ntwo\n");
}

TEST_F(CommandsTest, WithoutInputItIsEmpty) {
  EXPECT_EQ(agent_.run({"cat"})["out"], "");
}

TEST_F(CommandsTest, ATerminalHasItsSizeAndTakesControlCharacters) {
  const Json started = agent_.request(
      "exec.start", {{"argv", {"sh", "-c", "trap 'echo caught; exit 5' INT; stty size; while :; do sleep 0.01; done"}},
                     {"terminal", {{"rows", 30}, {"columns", 90}}}});
  const std::uint32_t stream = started["stream"];
  ASSERT_TRUE(agent_.shows(stream, "30 90"));
  agent_.input(stream, "\x03");
  EXPECT_EQ(agent_.notice("exit")["status"], 5);
  EXPECT_THAT(agent_.bytes(stream), HasSubstr("caught"));
}

TEST_F(CommandsTest, ATerminalFollowsANewSize) {
  const Json started = agent_.request(
      "exec.start", {{"argv", {"sh", "-c", "trap 'stty size; exit' WINCH; echo on; while :; do sleep 0.01; done"}},
                     {"terminal", {{"rows", 30}, {"columns", 90}}}});
  const std::uint32_t stream = started["stream"];
  ASSERT_TRUE(agent_.shows(stream, "on"));
  agent_.request("exec.control", {{"stream", stream}, {"resize", {{"rows", 10}, {"columns", 20}}}});
  agent_.notice("exit");
  EXPECT_THAT(agent_.bytes(stream), HasSubstr("10 20"));
}

TEST_F(CommandsTest, ASignalReachesTheWholeCommand) {
  const Json started = agent_.request("exec.start", {{"argv", {"sh", "-c", "sleep 1000; true"}}});
  agent_.request("exec.control", {{"stream", started["stream"]}, {"signal", SIGTERM}});
  EXPECT_EQ(agent_.notice("exit")["signal"], SIGTERM);
}

TEST_F(CommandsTest, AnAbandonedCommandThatIgnoresItIsKilled) {
  const Json started = agent_.request("exec.start", {{"argv", {"sh", "-c", "trap '' HUP; echo on; sleep 1000"}}});
  ASSERT_TRUE(agent_.shows(started["stream"], "on"));
  agent_.request("exec.control", {{"stream", started["stream"]}, {"abandon", true}});
  EXPECT_EQ(agent_.notice("exit")["signal"], SIGKILL);
}

TEST_F(CommandsTest, OutputBeyondTheCreditWaits) {
  const Json started = agent_.request("exec.start", {{"argv", {"head", "-c", "1000000", "/dev/zero"}}});
  const std::uint32_t stream = started["stream"];
  // A later request is answered after everything that the credit covers.
  while (agent_.bytes(stream).size() < simulator::channel::FIRST_CREDIT) {
    agent_.request("host.status");
  }
  agent_.run({"true"});
  EXPECT_EQ(agent_.bytes(stream).size(), simulator::channel::FIRST_CREDIT);
  agent_.request("exec.control", {{"stream", stream}, {"credit", 2'000'000}});
  EXPECT_EQ(agent_.notice("exit")["status"], 0);
  EXPECT_EQ(agent_.bytes(stream).size(), 1'000'000U);
}

TEST_F(CommandsTest, AProcessLeftBehindDoesNotHoldUpTheEnd) {
  EXPECT_EQ(agent_.run({"sh", "-c", "sleep 1000 & echo started"}),
            (Json{{"status", 0}, {"out", "started\n"}, {"err", ""}}));
}

TEST_F(CommandsTest, OrphansAreReaped) {
  agent_.run({"sh", "-c", "(sh -c 'exit 0' &)"});
  const Json end = agent_.run(
      {"sh", "-c", "n=1; while [ $n != 0 ]; do n=$(cat /proc/[0-9]*/stat | grep -c ' Z '); done; echo none"});
  EXPECT_EQ(end["out"], "none\n");
}

// A command sees its three standard streams and nothing of the agent's.
TEST_F(CommandsTest, NoDescriptorIsInherited) {
  EXPECT_EQ(agent_.run({"ls", "/proc/self/fd"})["out"], "0\n1\n2\n3\n");
}

}  // namespace
