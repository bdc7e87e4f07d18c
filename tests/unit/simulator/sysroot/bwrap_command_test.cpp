#include "simulator/sysroot/bwrap_command.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

namespace {

using simulator::sysroot::BwrapCommand;
using testing::ElementsAre;
using Words = std::vector<std::string>;

class BwrapCommandTest : public ::testing::Test {
protected:
  /// Whether the line contains these words in sequence.
  bool has(const Words& sequence) const {
    return std::search(line_.begin(), line_.end(), sequence.begin(), sequence.end()) != line_.end();
  }

  BwrapCommand bwrap_{{"/the/build", {"/some/sources"}, {{"/a/library.so", "/run/unit/library/library.so"}}, 3}};
  Words line_ = bwrap_.line({{"NAME", "value"}, {"OTHER", ""}}, {"program", "--option"});
};

TEST_F(BwrapCommandTest, TheInnerRootIsEnteredFromTheOuterOne) {
  EXPECT_EQ(std::count(line_.begin(), line_.end(), "/usr/bin/bwrap"), 2);
  EXPECT_EQ(line_.front(), "/usr/bin/bwrap");
  EXPECT_TRUE(has({"--die-with-parent", "--new-session"}));
}

TEST_F(BwrapCommandTest, TheCommandHasExactlyTheEnvironmentGiven) {
  const auto cleared = std::find(line_.begin(), line_.end(), "--clearenv");
  EXPECT_THAT(Words(cleared, line_.end()), ElementsAre("--clearenv", "--setenv", "NAME", "value", "--setenv", "OTHER",
                                                       "", "--", "program", "--option"));
}

TEST_F(BwrapCommandTest, TheMachineIsReadOnly) {
  EXPECT_TRUE(has({"--ro-bind", "/usr", "/usr"}));
  EXPECT_TRUE(has({"--ro-bind", "/the/build", "/opt/unit"}));
  EXPECT_TRUE(has({"--ro-bind", "/opt/unit", "/opt/unit"}));
  EXPECT_FALSE(has({"/home", "/home"}));
}

TEST_F(BwrapCommandTest, WhatTheUnitCanWriteIsInMemoryAndLimited) {
  for (const char* folder : {"/sys", "/run", "/root", "/dev/shm", "/tmp"}) {
    EXPECT_TRUE(has({"--size", "3145728", "--tmpfs", folder})) << folder;
  }
  EXPECT_TRUE(has({"--perms", "1777", "--size", "3145728", "--tmpfs", "/tmp"}));
  EXPECT_FALSE(has({"--bind", "/the/build"}));
}

TEST_F(BwrapCommandTest, BoundPathsAreSeenReadOnlyAtTheirPlaces) {
  EXPECT_TRUE(has({"--ro-bind", "/some/sources", "/bound/0"}));
  EXPECT_TRUE(has({"--ro-bind", "/bound/0", "/some/sources"}));
  EXPECT_TRUE(has({"--ro-bind", "/a/library.so", "/bound/1"}));
  EXPECT_TRUE(has({"--ro-bind", "/bound/1", "/run/unit/library/library.so"}));
}

TEST_F(BwrapCommandTest, NamespacesKeepTheUnitApart) {
  for (const char* option : {"--unshare-pid", "--unshare-ipc", "--unshare-net", "--unshare-uts", "--unshare-user"}) {
    EXPECT_TRUE(has({option})) << option;
  }
  EXPECT_TRUE(has({"--as-pid-1"}));
}

TEST_F(BwrapCommandTest, RootStartsTheUnitAsNobody) {
  const bool drops = has({"/usr/bin/setpriv", "--reuid", "65534", "--regid", "65534", "--clear-groups"});
  EXPECT_EQ(drops, ::geteuid() == 0);
}

TEST_F(BwrapCommandTest, FilesOfItsOwnAreHandedOverByDescriptor) {
  const auto hosts = std::find(line_.begin(), line_.end(), "/etc/hosts");
  ASSERT_NE(hosts, line_.end());
  EXPECT_EQ(Words(hosts - 4, hosts - 1), (Words{"--perms", "0644", "--file"}));
  char text[64] = {};
  EXPECT_GT(::pread(std::stoi(*(hosts - 1)), text, sizeof text - 1, 0), 0);
  EXPECT_STREQ(text, "127.0.0.1 localhost unit\n");
}

}  // namespace
