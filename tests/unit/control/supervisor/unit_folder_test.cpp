#include "control/supervisor/unit_folder.h"

#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>

#include "control/supervisor/launch.h"
#include "tests/doubles/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using namespace control::supervisor;
using doubles::text_of;
using doubles::write_text;

/// Each test has a runtime folder of its own.
class UnitFolderTest : public testing::Test {
protected:
  UnitFolderTest() { setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1); }
  ~UnitFolderTest() override { unsetenv("XDG_RUNTIME_DIR"); }

  /// The message with which a unit is refused.
  static std::string refusal(const std::string& name, const std::string& state) {
    try {
      const UnitFolder unit(name, state);
    } catch (const LaunchError& error) {
      return error.what();
    }
    return "accepted";
  }

  doubles::TemporaryFolder folder_;
  const fs::path runtime_ = fs::path(folder_.path()) / "unit";
};

mode_t mode_of(const fs::path& path) {
  struct stat status {};
  lstat(path.c_str(), &status);
  return status.st_mode & 07777;
}

TEST_F(UnitFolderTest, BelongsToTheCallerAloneAndGoesWithTheUnit) {
  fs::path path;
  {
    const UnitFolder unit("demo", "");
    path = unit.path();
    EXPECT_EQ(path, runtime_ / "demo");
    EXPECT_EQ(mode_of(path), 0700U);
    EXPECT_EQ(mode_of(runtime_), 0700U);
    EXPECT_EQ(mode_of(path / "logs"), 0700U);
  }
  EXPECT_FALSE(fs::exists(path));
  EXPECT_TRUE(fs::is_empty(runtime_));
}

TEST_F(UnitFolderTest, UnitsWithoutANameAreCounted) {
  const UnitFolder one("", "");
  std::optional<UnitFolder> two(std::in_place, "", "");
  const UnitFolder three("", "");
  EXPECT_EQ(one.name(), "unit-1");
  EXPECT_EQ(two->name(), "unit-2");
  EXPECT_EQ(three.name(), "unit-3");
  two.reset();
  EXPECT_EQ(UnitFolder("", "").name(), "unit-2");
}

TEST_F(UnitFolderTest, ASecondUnitOfTheSameNameIsRefused) {
  const UnitFolder unit("demo", "");
  EXPECT_EQ(refusal("demo", ""), "a unit named \"demo\" is running");
  EXPECT_TRUE(fs::exists(unit.path() / "lock"));
}

TEST_F(UnitFolderTest, TheFolderOfADeadUnitIsReplaced) {
  fs::create_directories(runtime_ / "demo/logs");
  fs::permissions(runtime_, fs::perms::owner_all);
  write_text(runtime_ / "demo/lock", "");
  write_text(runtime_ / "demo/left", "over");
  const UnitFolder unit("demo", "");
  EXPECT_FALSE(fs::exists(runtime_ / "demo/left"));
}

TEST_F(UnitFolderTest, ARuntimeFolderThatOthersCanEnterIsRefused) {
  fs::create_directories(runtime_);
  fs::permissions(runtime_, fs::perms::owner_all | fs::perms::others_exec);
  EXPECT_EQ(refusal("demo", ""), runtime_.string() + ": expected a folder of your own with mode 0700");
}

TEST_F(UnitFolderTest, ARuntimeFolderThatIsALinkIsRefused) {
  const doubles::TemporaryFolder elsewhere;
  fs::create_directory_symlink(elsewhere.path(), runtime_);
  EXPECT_EQ(refusal("demo", ""), runtime_.string() + ": expected a folder of your own with mode 0700");
  EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

TEST_F(UnitFolderTest, AStateFolderIsMadeMarkedAndKept) {
  const std::string state = folder_ / "deep/state";
  {
    const UnitFolder unit("demo", state);
    write_text(unit.path() / "logs/host.out", "kept");
  }
  EXPECT_EQ(text_of(state + "/logs/host.out"), "kept");
  EXPECT_EQ(text_of(state + "/unit-state.json"), "{\"format\":1}\n");
  EXPECT_EQ(mode_of(state), 0700U);
  const UnitFolder again("demo", state);
  EXPECT_FALSE(fs::exists(state + "/logs/host.out"));
}

TEST_F(UnitFolderTest, AFolderWithoutTheMarkerIsRefusedUntouched) {
  const std::string state = folder_ / "state";
  fs::create_directories(state + "/logs");
  fs::create_directories(state + "/tmp");
  write_text(state + "/lock", "");
  write_text(state + "/logs/mine", "mine");
  EXPECT_EQ(refusal("demo", state), state + ": neither empty nor a unit's state folder");
  EXPECT_EQ(text_of(state + "/logs/mine"), "mine");
  EXPECT_TRUE(fs::exists(state + "/tmp"));
  EXPECT_TRUE(fs::is_empty(runtime_));
}

TEST_F(UnitFolderTest, AMarkerOfAnotherFormatIsRefused) {
  const std::string state = folder_ / "state";
  fs::create_directories(state);
  write_text(state + "/unit-state.json", "{\"format\":2}\n");
  EXPECT_EQ(refusal("demo", state), state + ": neither empty nor a unit's state folder");
}

TEST_F(UnitFolderTest, AMarkerThatIsALinkIsRefused) {
  const std::string state = folder_ / "state";
  fs::create_directories(state);
  write_text(folder_ / "marker", "{\"format\":1}\n");
  fs::create_symlink(folder_ / "marker", state + "/unit-state.json");
  EXPECT_EQ(refusal("demo", state), state + ": neither empty nor a unit's state folder");
}

TEST_F(UnitFolderTest, AStateFolderThatIsAFileIsRefused) {
  const std::string state = folder_ / "state";
  write_text(state, "mine");
  EXPECT_EQ(refusal("demo", state), state + ": not a folder");
  EXPECT_EQ(text_of(state), "mine");
}

TEST_F(UnitFolderTest, TwoUnitsDoNotShareAStateFolder) {
  const std::string state = folder_ / "state";
  const UnitFolder unit("demo", state);
  EXPECT_EQ(refusal("other", state), state + ": a unit is running on this state folder");
}

TEST_F(UnitFolderTest, ANameTooLongForASocketIsRefused) {
  const std::string deep = folder_ / std::string(80, 'x');
  fs::create_directories(deep);
  setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
  const UnitFolder unit(std::string(32, 'a'), "");
  try {
    unit.listen();
    FAIL() << "listens";
  } catch (const LaunchError& error) {
    EXPECT_EQ(std::string(error.what()),
              unit.path().string() + "/control.sock: name too long for a socket; at most 107 bytes are allowed");
  }
}

}  // namespace
