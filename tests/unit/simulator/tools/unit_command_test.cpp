#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "tests/unit/simulator/model/this_unit.h"

namespace {

using doubles::lines_of;
using doubles::text_of;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator_test::ThisUnit;

class UnitCommandTest : public ::testing::Test {
protected:
  UnitCommandTest() {
    ThisUnit::get().reset();
    write_program("mount", "echo mounted \"$@\"; echo \"PATH=$PATH\"; exit 5");
  }
  ~UnitCommandTest() override { ThisUnit::get().reset(); }

  void write_program(const std::string& name, const std::string& lines) {
    std::filesystem::create_directories(real_);
    doubles::write_text(real_ + "/" + name, "#!/bin/sh\n" + lines + "\n");
    std::filesystem::permissions(real_ + "/" + name, std::filesystem::perms::owner_all);
  }

  /// Runs a shell command with the unit's PATH; returns its exit status and keeps its output.
  int run(const std::string& line, const std::string& environment = "") {
    const std::string command = "export PATH=" COMMANDS_FOLDER ":" + real_ + ":/usr/bin:/bin; " + environment + " " +
                                line + " >" + (folder_ / "out") + " 2>" + (folder_ / "err");
    const int status = std::system(command.c_str());
    out_ = text_of(folder_ / "out");
    err_ = text_of(folder_ / "err");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  simulator::model::UnitModel& unit_ = ThisUnit::get().model();
  doubles::TemporaryFolder folder_;
  const std::string real_ = folder_ / "real";
  std::string out_;
  std::string err_;
};

TEST_F(UnitCommandTest, BecomesTheProgramInTheFurtherFolders) {
  EXPECT_EQ(run("mount -o 'remount,rw ' /"), 5);
  EXPECT_EQ(out_, "mounted -o remount,rw  /\nPATH=" + real_ + ":/usr/bin:/bin\n");
  EXPECT_EQ(err_, "");
}

TEST_F(UnitCommandTest, CountsAndRecordsTheCommand) {
  unit_.record().start();
  EXPECT_EQ(run("mount -o remount,rw /"), 5);
  EXPECT_EQ(unit_.faults().calls(Point::SHELL_MOUNT), 1U);
  const auto lines = lines_of(ThisUnit::get().file("calls.jsonl"));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NE(lines[0].find(R"("at":"shell.mount","args":{"arguments":["-o","remount,rw","/"]})"), std::string::npos);
}

TEST_F(UnitCommandTest, AFailureIsAnExitStatus) {
  unit_.faults().arm(Point::SHELL_MOUNT, {FaultKind::FAIL, 0, 1, 1});
  EXPECT_EQ(run("mount"), 1);
  EXPECT_EQ(out_, "");
  EXPECT_EQ(err_, "mount: failed with status 1 by a fault\n");
  EXPECT_EQ(run("mount"), 5);
  unit_.faults().arm(Point::SHELL_MOUNT, {FaultKind::FAIL, 32});
  EXPECT_EQ(run("mount"), 32);
}

TEST_F(UnitCommandTest, AMissingProgramIsNotFound) {
  std::filesystem::remove(real_ + "/mount");
  EXPECT_EQ(run("udhcpc", "PATH=" COMMANDS_FOLDER ":" + real_), 127);
  EXPECT_EQ(err_, "udhcpc: No such file or directory\n");
  doubles::write_text(real_ + "/udhcpc", "");
  std::filesystem::permissions(real_ + "/udhcpc", std::filesystem::perms::owner_read);
  EXPECT_EQ(run("udhcpc", "PATH=" COMMANDS_FOLDER ":" + real_), 126);
  EXPECT_EQ(err_, "udhcpc: Permission denied\n");
}

TEST_F(UnitCommandTest, OutsideAUnitTheProgramRunsAllTheSame) {
  EXPECT_EQ(run("mount", "UNIT_RUN=/nowhere"), 5);
}

TEST_F(UnitCommandTest, AScriptCrossesAPointByItsName) {
  EXPECT_EQ(run(UNIT_COMMAND " shutdown"), 0);
  unit_.faults().arm(Point::SHELL_SHUTDOWN, {FaultKind::FAIL, 3});
  EXPECT_EQ(run(UNIT_COMMAND " shutdown"), 3);
  EXPECT_EQ(err_, "shutdown: failed with status 3 by a fault\n");
  EXPECT_EQ(run(UNIT_COMMAND), 2);
  EXPECT_EQ(err_, "usage: unit-command PROGRAM\n");
}

}  // namespace
