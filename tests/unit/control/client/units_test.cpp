#include "control/client/units.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "control/client/errors.h"
#include "tests/doubles/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using control::client::ConnectionError;
using control::client::find_unit;
using control::client::FoundUnit;
using control::client::is_unit_name;
using control::client::list_units;
using control::client::NoSuchUnit;
using control::client::runtime_folder;

/// A runtime folder of the test's own.
class UnitsTest : public testing::Test {
protected:
  UnitsTest() { ::setenv("XDG_RUNTIME_DIR", (folder_ / "").c_str(), 1); }
  ~UnitsTest() override {
    for (const auto& [name, lock] : locks_) {
      ::close(lock);
    }
    ::unsetenv("XDG_RUNTIME_DIR");
  }

  fs::path runtime() const { return fs::path(folder_ / "unit"); }
  /// The folder of a unit whose supervisor lives.
  void make_unit(const std::string& name, const std::string& document = R"({"supervisor":42})") {
    fs::create_directories(runtime() / name / "logs");
    fs::permissions(runtime(), fs::perms::owner_all);
    doubles::write_text(runtime() / name / "unit.json", document);
    doubles::write_text(runtime() / name / "logs/host.out", "text");
    locks_[name] = ::open((runtime() / name / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(locks_[name], LOCK_EX | LOCK_NB), 0);
  }
  /// Its supervisor dies.
  void kill_unit(const std::string& name) {
    ::close(locks_[name]);
    locks_.erase(name);
  }
  static std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const FoundUnit& unit : list_units()) {
      names.push_back(unit.name);
    }
    return names;
  }
  std::vector<std::string> files() const {
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(runtime())) {
      files.push_back(entry.path().filename());
    }
    return files;
  }
  static std::string refusal(const std::string& name) {
    try {
      find_unit(name);
      return "found";
    } catch (const NoSuchUnit& error) {
      return error.what();
    }
  }

  doubles::TemporaryFolder folder_;
  std::map<std::string, int> locks_;
};

using Names = std::vector<std::string>;

TEST_F(UnitsTest, RunningUnitsAreListedByName) {
  EXPECT_EQ(names(), Names());
  make_unit("unit-2");
  make_unit("bench");
  const auto units = list_units();
  ASSERT_EQ(units.size(), 2u);
  EXPECT_EQ(units[0].name, "bench");
  EXPECT_EQ(units[0].folder, runtime() / "bench");
  EXPECT_EQ(units[0].socket(), runtime() / "bench/control.sock");
  EXPECT_EQ(units[0].supervisor, 42);
  EXPECT_EQ(units[1].name, "unit-2");
}

TEST_F(UnitsTest, LeftOversAreRemovedAndOthersAreNot) {
  make_unit("alive");
  make_unit("dead");
  make_unit(".new-abcdef");
  make_unit(".new-ghijkl");
  kill_unit("dead");
  kill_unit(".new-ghijkl");
  fs::create_directory(runtime() / "half-removed");
  fs::create_directory(runtime() / ".removed-1-x");
  fs::create_directory(runtime() / "Not A Unit");
  fs::create_directory(runtime() / ".new-mnopqr");
  EXPECT_EQ(names(), Names{"alive"});
  auto left = files();
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (Names{".new-abcdef", ".new-mnopqr", "Not A Unit", "alive"}));
}

TEST_F(UnitsTest, LinksAreNotFollowed) {
  make_unit("dead");
  const doubles::TemporaryFolder elsewhere;
  doubles::write_text(elsewhere / "lock", "");
  doubles::write_text(elsewhere / "kept", "text");
  fs::create_directory_symlink(elsewhere / "", runtime() / "dead/logs/link");
  fs::create_directory_symlink(elsewhere / "", runtime() / "linked");
  kill_unit("dead");
  make_unit("odd");
  fs::remove(runtime() / "odd/unit.json");
  doubles::write_text(elsewhere / "unit.json", R"({"supervisor":1})");
  fs::create_symlink(elsewhere / "unit.json", runtime() / "odd/unit.json");
  EXPECT_EQ(names(), Names());
  EXPECT_FALSE(fs::exists(runtime() / "dead"));
  EXPECT_TRUE(fs::is_symlink(runtime() / "linked"));
  EXPECT_EQ(doubles::text_of(elsewhere / "kept"), "text");
}

TEST_F(UnitsTest, AUnitWithoutDescriptionIsNotListedYet) {
  make_unit("a", "");
  make_unit("b", "{");
  make_unit("c", R"({"supervisor":"x"})");
  make_unit("d", std::string(100'000, ' ') + R"({"supervisor":1})");
  make_unit("e");
  fs::remove(runtime() / "e/unit.json");
  ASSERT_EQ(::mkfifo((runtime() / "e/unit.json").c_str(), 0600), 0);
  EXPECT_EQ(names(), Names());
}

TEST_F(UnitsTest, AUnitIsFoundByNameOrAsTheOnlyOne) {
  EXPECT_EQ(refusal(""), "no unit is running");
  EXPECT_EQ(refusal("x"), "no unit named \"x\" is running");
  make_unit("unit-1");
  EXPECT_EQ(find_unit("").name, "unit-1");
  EXPECT_EQ(find_unit("unit-1").supervisor, 42);
  EXPECT_EQ(refusal("x\x1b"), "no unit named \"x\\u001b\"; running: unit-1");
  make_unit("unit-2");
  EXPECT_EQ(refusal(""), "several units are running: unit-1, unit-2");
  EXPECT_EQ(find_unit("unit-2").name, "unit-2");
}

TEST_F(UnitsTest, TheRuntimeFolderMustBeTheUsersOwn) {
  EXPECT_EQ(runtime_folder(), runtime());
  EXPECT_EQ(fs::status(runtime()).permissions(), fs::perms::owner_all);
  const auto refusal_of = [] {
    try {
      runtime_folder();
      return std::string("accepted");
    } catch (const ConnectionError& error) {
      return std::string(error.what());
    }
  };
  fs::permissions(runtime(), fs::perms::owner_all | fs::perms::group_read);
  EXPECT_EQ(refusal_of(), runtime().string() + ": must have mode 0700");
  fs::remove(runtime());
  const doubles::TemporaryFolder elsewhere;
  fs::create_directory_symlink(elsewhere / "", runtime());
  EXPECT_EQ(refusal_of(), runtime().string() + ": must be a directory, not a link or a file");
  fs::remove(runtime());
  doubles::write_text(runtime(), "");
  EXPECT_EQ(refusal_of(), runtime().string() + ": must be a directory, not a link or a file");
  fs::remove(runtime());
  if (::geteuid() == 0) {
    fs::create_directory(runtime());
    fs::permissions(runtime(), fs::perms::owner_all);
    ASSERT_EQ(::chown(runtime().c_str(), 12345, 12345), 0);
    EXPECT_EQ(refusal_of(), runtime().string() + ": belongs to another user");
  }
}

TEST(UnitNameTest, NamesAreShortAndPlain) {
  for (const char* name : {"a", "unit-1", "0x", "a-"}) {
    EXPECT_TRUE(is_unit_name(name)) << name;
  }
  EXPECT_TRUE(is_unit_name(std::string(32, 'a')));
  for (const char* name : {"", "-a", "A", "a.b", "a/b", "..", "a b", "é"}) {
    EXPECT_FALSE(is_unit_name(name)) << name;
  }
  EXPECT_FALSE(is_unit_name(std::string(33, 'a')));
}

}  // namespace
