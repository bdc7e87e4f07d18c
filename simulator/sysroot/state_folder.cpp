#include "simulator/sysroot/state_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "simulator/sysroot/user_namespaces.h"

namespace simulator::sysroot {
namespace fs = std::filesystem;
namespace {

constexpr const char* LOCK_NAME = "lock";
constexpr const char* UNITS_FOLDER = "/tmp";
constexpr const char* UNIT_PREFIX = "unit-";
constexpr const char* SEEN_INSIDE[] = {"sys", "tmp", "run", "root"};

/// Runs last in a shutdown; adds a line to the record of calls and creates a marker file.
constexpr const char* SHUTDOWN_SCRIPT =
    "#!/bin/sh\n"
    "/opt/unit/bin/unit-record /root/.shutdown\n"
    "touch /run/unit/shutdown\n";

void write_file(const fs::path& path, const char* text, fs::perms permissions) {
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file) {
    throw StateFolderError(path.string() + ": cannot be written: " + std::strerror(errno));
  }
  fs::permissions(path, permissions);
}

/// Makes the user of the unit's programs the owner of the folders that the unit sees.
void hand_over(const fs::path& folder) {
  if (geteuid() != 0) {
    return;
  }
  const auto hand_over_one = [](const fs::path& path) {
    if (lchown(path.c_str(), UNIT_USER_OF_ROOT, UNIT_USER_OF_ROOT) != 0) {
      throw StateFolderError(path.string() + ": cannot change the owner: " + std::strerror(errno));
    }
  };
  hand_over_one(folder);
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    hand_over_one(entry.path());
  }
}

}  // namespace

StateFolder StateFolder::make() {
  // The lock is taken before the folder gets the name under which it is found.
  std::string hidden = std::string(UNITS_FOLDER) + "/.unit-XXXXXX";
  if (mkdtemp(hidden.data()) == nullptr) {
    throw StateFolderError(std::string("cannot create a state folder in ") + UNITS_FOLDER + ": " +
                           std::strerror(errno));
  }
  StateFolder folder(hidden, true);
  folder.lock();
  const fs::path path = fs::path(UNITS_FOLDER) / (UNIT_PREFIX + hidden.substr(hidden.size() - 6));
  fs::rename(hidden, path);
  folder.path_ = path;
  folder.make_folders();
  return folder;
}

StateFolder StateFolder::at(const fs::path& path) {
  const fs::path whole = fs::absolute(path).lexically_normal();
  if ((whole / "run/unit/host.sock").string().size() >= sizeof(sockaddr_un::sun_path)) {
    throw StateFolderError(whole.string() + ": name too long for a state folder: its socket paths may have at most " +
                           std::to_string(sizeof(sockaddr_un::sun_path) - 1) + " bytes");
  }
  std::error_code error;
  fs::create_directories(whole, error);
  if (error) {
    throw StateFolderError(whole.string() + ": cannot be created: " + error.message());
  }
  if (!fs::is_empty(whole) && !fs::exists(whole / LOCK_NAME)) {
    throw StateFolderError(whole.string() + ": neither empty nor a unit's state folder");
  }
  StateFolder folder(whole, false);
  folder.lock();
  for (const char* name : SEEN_INSIDE) {
    fs::remove_all(whole / name);
  }
  folder.make_folders();
  return folder;
}

StateFolder::StateFolder(fs::path path, bool removed_at_end)
    : path_(std::move(path)), removed_at_end_(removed_at_end) {}

StateFolder::StateFolder(StateFolder&& other) noexcept
    : path_(std::move(other.path_)), removed_at_end_(other.removed_at_end_), lock_(other.lock_) {
  other.removed_at_end_ = false;
  other.lock_ = -1;
}

StateFolder::~StateFolder() {
  if (removed_at_end_) {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  if (lock_ != -1) {
    close(lock_);
  }
}

void StateFolder::lock() {
  lock_ = open((path_ / LOCK_NAME).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock_ == -1) {
    throw StateFolderError(path_.string() + ": cannot be written: " + std::strerror(errno));
  }
  if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
    throw StateFolderError(path_.string() + ": a unit is running on this state folder");
  }
}

void StateFolder::make_folders() const {
  for (const char* name : SEEN_INSIDE) {
    fs::create_directory(path_ / name);
  }
  // As on the unit: anybody may write, and files belong to their creator.
  fs::permissions(path_ / "tmp", fs::perms::all | fs::perms::sticky_bit);
}

void StateFolder::fill(const model::UnitModel::Fill& values) const {
  fs::create_directories(run() / "log");
  model::UnitModel::create((run() / "model").string(), values);
  constexpr fs::perms READABLE =
      fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::others_read;
  for (const char* name : {"events.jsonl", "calls.jsonl", "log/host.out", "log/host.err"}) {
    write_file(run() / name, "", READABLE);
  }
  write_file(path_ / "root/.shutdown", SHUTDOWN_SCRIPT, READABLE | fs::perms::owner_exec);
  for (const char* name : SEEN_INSIDE) {
    hand_over(path_ / name);
  }
}

bool is_running(const fs::path& state) {
  const int lock = open((state / LOCK_NAME).c_str(), O_RDONLY | O_CLOEXEC);
  if (lock == -1) {
    return false;
  }
  const bool free = flock(lock, LOCK_SH | LOCK_NB) == 0;
  close(lock);
  return !free;
}

std::vector<fs::path> running_units() {
  std::vector<fs::path> units;
  for (const fs::directory_entry& entry : fs::directory_iterator(UNITS_FOLDER)) {
    struct stat status {};
    if (entry.path().filename().string().rfind(UNIT_PREFIX, 0) == 0 && lstat(entry.path().c_str(), &status) == 0 &&
        status.st_uid == geteuid() && S_ISDIR(status.st_mode) && is_running(entry.path())) {
      units.push_back(entry.path());
    }
  }
  return units;
}

}  // namespace simulator::sysroot
