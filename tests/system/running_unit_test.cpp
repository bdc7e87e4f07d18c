// Commands without a named unit. They look for it in /tmp, so each test has its own /tmp.

#include <sched.h>
#include <sys/mount.h>

#include <fstream>

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::MatchesRegex;

void write_text(const char* path, const std::string& text) {
  std::ofstream(path) << text;
}

/// Gives this process a private, empty /tmp.
void take_own_tmp() {
  const std::string user = std::to_string(getuid());
  const std::string group = std::to_string(getgid());
  const bool root = geteuid() == 0;
  if (unshare(root ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) {
    _exit(125);
  }
  if (!root) {
    write_text("/proc/self/setgroups", "deny");
    write_text("/proc/self/uid_map", user + " " + user + " 1");
    write_text("/proc/self/gid_map", group + " " + group + " 1");
  }
  if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      mount("none", "/tmp", "tmpfs", 0, "mode=1777") != 0) {
    _exit(126);
  }
}

/// A shell script with functions to start a unit, which sets $unit to its process id, and to end it.
Ending script(const std::string& text) {
  const char functions[] =
      "start() { unit run --json > /tmp/out 2> /tmp/err & until [ -s /tmp/out ]; do sleep 0.01; done; "
      "unit=$!; rm /tmp/out; }\n"
      "end() { kill \"$1\" \"$2\"; wait \"$2\"; } 2> /tmp/end\n";
  return OutsideProgram({"/bin/sh", "-c", "PATH=" BUILD_FOLDER "/bin:$PATH\n" + (functions + text)}, "", take_own_tmp)
      .wait();
}

class RunningUnitTest : public testing::Test {
protected:
  RunningUnitTest() {
    if (std::string(BUILD_FOLDER).rfind("/tmp/", 0) == 0) {
      throw std::runtime_error("the build folder must not lie in /tmp");
    }
  }
};

TEST_F(RunningUnitTest, TheOnlyUnitThatRunsIsMeant) {
  const Ending ending = script(
      "start\n"
      "unit set board.digital.card_id 7 && unit get board.digital.card_id\n"
      "unit call --json GetMaxInterfaces\n"
      "unit interrupt 0x40 && unit dialogs --json\n"
      "end -TERM $unit");
  EXPECT_EQ(ending.out, "7\n{\"result\":1}\n[]\n");
  EXPECT_EQ(ending.err, "");
  EXPECT_THAT(ending, ExitedWith(0));
}

TEST_F(RunningUnitTest, WithoutAUnitTheCommandSaysHowToStartOne) {
  const Ending ending = script("unit get board.handle");
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "unit: no unit is running; start one with \"unit run\"\n");
}

TEST_F(RunningUnitTest, OfSeveralUnitsOneMustBeChosen) {
  const Ending ending = script(
      "start; first=$unit\n"
      "start; second=$unit\n"
      "unit get board.handle; status=$?\n"
      "end -TERM $first; end -TERM $second\n"
      "exit $status");
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_THAT(ending.err, MatchesRegex("unit: several units are running; choose one with --unit-state: "
                                       "/tmp/unit-[A-Za-z0-9]{6} /tmp/unit-[A-Za-z0-9]{6}\n"));
}

TEST_F(RunningUnitTest, AFolderWhoseUnitWasKilledDoesNotCount) {
  const Ending ending = script(
      "start; end -KILL $unit; echo /tmp/unit-*/lock\n"
      "start; unit get board.handle; end -TERM $unit\n"
      "unit get board.handle");
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_THAT(ending.out, MatchesRegex("/tmp/unit-[A-Za-z0-9]{6}/lock\n3\n"));
  EXPECT_EQ(ending.err, "unit: no unit is running; start one with \"unit run\"\n");
}

TEST_F(RunningUnitTest, AUnitOnAFolderElsewhereIsFoundByItsFolderOnly) {
  const Ending ending = script(
      "unit run --json --state /tmp/elsewhere > /tmp/out 2> /tmp/err & unit=$!\n"
      "until [ -s /tmp/out ]; do sleep 0.01; done\n"
      "unit get board.handle\n"
      "unit get --unit-state /tmp/elsewhere board.handle; status=$?\n"
      "end -TERM $unit; exit $status");
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.out, "3\n");
  EXPECT_EQ(ending.err, "unit: no unit is running; start one with \"unit run\"\n");
}

}  // namespace
