#include "simulator/sysroot/state_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "tests/doubles/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using doubles::text_of;
using doubles::write_text;
using simulator::model::UnitModel;
using simulator::sysroot::is_running;
using simulator::sysroot::running_units;
using simulator::sysroot::StateFolder;
using simulator::sysroot::StateFolderError;

std::string refusal_of(const fs::path& path) {
  try {
    StateFolder::at(path);
  } catch (const StateFolderError& error) {
    return error.what();
  }
  return "taken";
}

bool is_listed(const fs::path& path) {
  const std::vector<fs::path> units = running_units();
  return std::find(units.begin(), units.end(), path) != units.end();
}

class StateFolderTest : public ::testing::Test {
protected:
  doubles::TemporaryFolder folder_;
  const std::string path_ = folder_ / "state";
};

TEST_F(StateFolderTest, AFolderOfItsOwnIsFoundWhileItLivesAndRemoved) {
  fs::path path;
  {
    const StateFolder state = StateFolder::make();
    path = state.path();
    EXPECT_TRUE(is_running(path));
    EXPECT_TRUE(is_listed(path));
  }
  EXPECT_FALSE(fs::exists(path));
  EXPECT_FALSE(is_listed(path));
}

TEST_F(StateFolderTest, AChosenFolderIsKept) {
  { const StateFolder state = StateFolder::at(path_); }
  EXPECT_TRUE(fs::exists(path_));
  EXPECT_FALSE(is_running(path_));
}

TEST_F(StateFolderTest, AnEarlierUnitIsRemovedFromAChosenFolder) {
  { StateFolder::at(path_).fill({}); }
  write_text(path_ + "/tmp/left", "over");
  const StateFolder state = StateFolder::at(path_);
  EXPECT_FALSE(fs::exists(path_ + "/tmp/left"));
  EXPECT_FALSE(fs::exists(path_ + "/run/unit"));
}

TEST_F(StateFolderTest, AFolderInUseOrOfSomethingElseIsRefused) {
  const StateFolder state = StateFolder::at(path_);
  EXPECT_EQ(refusal_of(path_), path_ + ": a unit is running on this state folder");
  fs::create_directory(folder_ / "other");
  write_text(folder_ / "other/file", "text");
  EXPECT_EQ(refusal_of(folder_ / "other"), folder_ / "other" + ": neither empty nor a unit's state folder");
  EXPECT_EQ(text_of(folder_ / "other/file"), "text");
  EXPECT_EQ(
      refusal_of(folder_ / "other/file/below").substr(0, (folder_ / "other/file/below: cannot be created").size()),
      folder_ / "other/file/below: cannot be created");
}

TEST_F(StateFolderTest, ANameTooLongForItsSocketsIsRefused) {
  const std::string longest =
      folder_ / std::string(107 - std::string("/run/unit/host.sock").size() - 1 - (folder_ / "").size() + 1, 'x');
  EXPECT_EQ(refusal_of(longest), "taken");
  EXPECT_EQ(refusal_of(longest + "x"),
            longest + "x: name too long for a state folder: its socket paths may have at most 107 bytes");
}

TEST_F(StateFolderTest, AFilledFolderHoldsTheUnit) {
  const StateFolder state = StateFolder::at(path_);
  state.fill([](UnitModel& unit) { unit.board().set_handle(9); });
  EXPECT_EQ(UnitModel::open(path_ + "/run/unit/model").board().handle(), 9);
  for (const char* name : {"events.jsonl", "calls.jsonl", "log/host.out", "log/host.err"}) {
    EXPECT_EQ(fs::file_size(path_ + "/run/unit/" + name), 0U) << name;
  }
  EXPECT_EQ(text_of(path_ + "/root/.shutdown"),
            "#!/bin/sh\n/opt/unit/bin/unit-record /root/.shutdown\ntouch /run/unit/shutdown\n");
  EXPECT_EQ(fs::status(path_ + "/root/.shutdown").permissions() & fs::perms::owner_exec, fs::perms::owner_exec);
  EXPECT_EQ(fs::status(path_ + "/tmp").permissions(), fs::perms::all | fs::perms::sticky_bit);
}

TEST_F(StateFolderTest, WhatTheUnitSeesBelongsToTheUsersUnit) {
  const StateFolder state = StateFolder::at(path_);
  state.fill({});
  struct stat status {};
  ASSERT_EQ(::stat((path_ + "/run/unit/model").c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, ::geteuid() == 0 ? 65534 : ::geteuid());
}

}  // namespace
