#include <sys/stat.h>

#include <cstdlib>

#include "tests/doubles/fake_shell.h"
#include "tests/doubles/fixed_files.h"
#include "tests/unit/handheld/handheld_under_test.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::FakeShell;
using doubles::put_file;
using testing::ElementsAre;

/// Commands go to a shell that only records them.
class NetworkTest : public HandheldTest {
protected:
  int status_ = 0;
  FakeShell shell_{[this](const std::string&) { return status_; }};
};

TEST_F(NetworkTest, ThereIsOneInterface) {
  EXPECT_EQ(unit_->GetMaxInterfaces(), 1);
}

TEST_F(NetworkTest, NetworkOffRunsExactlyOneCommand) {
  unit_->NetworkOff("eth0");
  EXPECT_THAT(calls().all(), ElementsAre("system ifconfig eth0 down"));
}

TEST_F(NetworkTest, SetupStaticIpCyclesTheInterfaceAndAssignsNoAddress) {
  unit_->SetupStaticIP("eth0");
  EXPECT_THAT(calls().all(), ElementsAre("system ifconfig eth0 down", "system ifconfig eth0 up"));
}

TEST_F(NetworkTest, StartDhcpRunsExactlyFourCommandsInOrder) {
  unit_->StartDHCP("eth0");
  EXPECT_THAT(calls().all(), ElementsAre("system ifconfig eth0 down", "system mount -o remount,rw /",
                                         "system udhcpc -i eth0 -b -T 3 -t 3", "system mount -o remount,ro /"));
}

TEST_F(NetworkTest, WhatTheCommandsReturnIsNotLookedAt) {
  const CapturedOutput output;
  for (const int status : {-1, 1, 256, 127 << 8}) {
    status_ = status;
    calls().clear();
    unit_->StartDHCP("eth0");
    EXPECT_EQ(calls().all().size(), 4U) << status;
    unit_->SetupStaticIP("eth0");
    EXPECT_EQ(calls().all().size(), 6U) << status;
    unit_->NetworkOff("eth0");
    EXPECT_EQ(calls().all().size(), 7U) << status;
  }
  EXPECT_EQ(output.out() + output.err(), "");
  EXPECT_TRUE(doubles::sent_events().empty());
}

class InterfaceNameTest : public NetworkTest, public testing::WithParamInterface<std::string> {};

TEST_P(InterfaceNameTest, GoesIntoTheCommandsAsItIs) {
  const std::string& name = GetParam();
  unit_->NetworkOff(name);
  EXPECT_THAT(calls().all(), ElementsAre("system ifconfig " + name + " down"));
  calls().clear();
  unit_->SetupStaticIP(name);
  EXPECT_THAT(calls().all(), ElementsAre("system ifconfig " + name + " down", "system ifconfig " + name + " up"));
  calls().clear();
  unit_->StartDHCP(name);
  EXPECT_THAT(calls().all(), ElementsAre("system ifconfig " + name + " down", "system mount -o remount,rw /",
                                         "system udhcpc -i " + name + " -b -T 3 -t 3", "system mount -o remount,ro /"));
}

INSTANTIATE_TEST_SUITE_P(Names, InterfaceNameTest,
                         testing::Values("", " ", "eth0 eth1", "\"eth0\"", "'", "eth0; touch /tmp/mark", "$(reboot)",
                                         "`reboot`", "a|b", "eth0\n", "\\", "../eth0", "%s%n", std::string(5000, 'x')));

/// Commands run in the real shell, and the programs they name are scripts that record their arguments.
class RealShellTest : public HandheldTest {
protected:
  RealShellTest() : path_(std::getenv("PATH")) {
    for (const std::string program : {"ifconfig", "mount", "udhcpc"}) {
      const std::string file = "/tmp/programs/" + program;
      put_file(file, "#!/bin/sh\nprintf '%s' " + program + " >> /tmp/ran\nprintf ' [%s]' \"$@\" >> /tmp/ran\n" +
                         "echo >> /tmp/ran\nexit 1\n");
      chmod(file.c_str(), 0755);
    }
    setenv("PATH", ("/tmp/programs:" + path_).c_str(), 1);
    doubles::remove_file("/tmp/ran");
    doubles::remove_file("/tmp/mark");
  }
  ~RealShellTest() override { setenv("PATH", path_.c_str(), 1); }

  std::string path_;
};

TEST_F(RealShellTest, StartDhcpRunsItsFourProgramsThoughEachFails) {
  unit_->StartDHCP("eth0");
  EXPECT_EQ(doubles::file_text("/tmp/ran"),
            "ifconfig [eth0] [down]\n"
            "mount [-o] [remount,rw] [/]\n"
            "udhcpc [-i] [eth0] [-b] [-T] [3] [-t] [3]\n"
            "mount [-o] [remount,ro] [/]\n");
}

TEST_F(RealShellTest, SetupStaticIpRunsItsTwoProgramsThoughEachFails) {
  unit_->SetupStaticIP("eth0");
  EXPECT_EQ(doubles::file_text("/tmp/ran"), "ifconfig [eth0] [down]\nifconfig [eth0] [up]\n");
}

TEST_F(RealShellTest, AnEmptyNameIsNoArgument) {
  unit_->NetworkOff("");
  EXPECT_EQ(doubles::file_text("/tmp/ran"), "ifconfig [down]\n");
}

TEST_F(RealShellTest, ANameIsTheShellsToInterpret) {
  const CapturedOutput shells_complaint;
  unit_->NetworkOff("'eth 0' x; touch /tmp/mark;");
  EXPECT_EQ(doubles::file_text("/tmp/ran"), "ifconfig [eth 0] [x]\n");
  EXPECT_EQ(doubles::file_text("/tmp/mark"), "");
}

}  // namespace
