#include "control/supervisor/unit_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "control/supervisor/launch.h"

namespace control::supervisor {
namespace fs = std::filesystem;
namespace {

constexpr const char* MARKER = "unit-state.json";
constexpr const char* MARKER_TEXT = "{\"format\":1}\n";
constexpr int MOST_NAMES = 10'000;

[[noreturn]] void fail(const fs::path& path, const std::string& what) {
  throw LaunchError(STATUS_FAILED, path.string() + ": " + what + ": " + std::strerror(errno));
}

/// Opens the file and locks it; -1 if it is missing or locked by somebody else.
int locked(const fs::path& file, int flags) {
  const int descriptor = open(file.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (descriptor != -1 && flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

/// Removes the folder of a unit whose supervisor has died. Returns false if the unit is alive.
bool clear_left_over(const fs::path& folder) {
  const int lock = locked(folder / "lock", O_RDWR);
  if (lock == -1 && fs::exists(fs::symlink_status(folder / "lock"))) {
    return false;
  }
  fs::remove_all(folder);
  if (lock != -1) {
    close(lock);
  }
  return true;
}

bool belongs_to_caller(const fs::path& folder) {
  struct stat status {};
  return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
         (status.st_mode & 077) == 0;
}

/// Gives root's folder to the service's user.
void hand_over(int folder, const fs::path& path) {
  if (geteuid() == 0 && fchown(folder, SERVICE_USER_OF_ROOT, SERVICE_USER_OF_ROOT) != 0) {
    fail(path, "cannot change the owner");
  }
}

int open_folder(const fs::path& path) {
  if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
    fail(path, "cannot be created");
  }
  const int folder = open(path.c_str(), O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (folder == -1) {
    fail(path, "cannot be opened");
  }
  return folder;
}

void write_text(const fs::path& path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  if (!file) {
    fail(path, "cannot be written");
  }
}

/// Takes the folder for the results of a unit: new, empty or marked by an earlier unit.
void take_state_folder(const fs::path& state) {
  if (!fs::exists(state)) {
    std::error_code error;
    fs::create_directories(state.parent_path(), error);
    if (mkdir(state.c_str(), 0700) != 0) {
      fail(state, "cannot be created");
    }
  }
  if (!fs::is_directory(state)) {
    throw LaunchError(STATUS_BAD_USAGE, state.string() + ": not a folder");
  }
  if (!fs::is_empty(state)) {
    std::ifstream marker(state / MARKER);
    std::string text;
    std::getline(marker, text, '\0');
    if (fs::is_symlink(state / MARKER) || text != MARKER_TEXT) {
      throw LaunchError(STATUS_BAD_USAGE, state.string() + ": neither empty nor a unit's state folder");
    }
  }
}

}  // namespace

fs::path runtime_folder() {
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  fs::path folder = runtime != nullptr && *runtime == '/' ? fs::path(runtime) / "unit"
                                                          : fs::path("/tmp/unit-" + std::to_string(geteuid()));
  if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
    fail(folder, "cannot be created");
  }
  if (!belongs_to_caller(folder)) {
    throw LaunchError(STATUS_FAILED, folder.string() + ": expected a folder of your own with mode 0700");
  }
  return folder;
}

UnitFolder::UnitFolder(const std::string& name, const std::string& state) {
  const fs::path runtime = runtime_folder();
  // The lock is taken before the folder gets the name under which it is found.
  std::string hidden = (runtime / ".new-XXXXXX").string();
  if (mkdtemp(hidden.data()) == nullptr) {
    fail(runtime, "cannot create a folder");
  }
  path_ = hidden;
  lock_ = locked(path_ / "lock", O_RDWR | O_CREAT);
  try {
    open_logs(state.empty() ? state : fs::absolute(state).lexically_normal().string());
    take_name(name);
  } catch (...) {
    fs::remove_all(path_);
    close_all();
    throw;
  }
}

UnitFolder::~UnitFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
  close_all();
}

void UnitFolder::close_all() {
  for (const int descriptor : {logs_, state_lock_, lock_}) {
    if (descriptor != -1) {
      close(descriptor);
    }
  }
}

void UnitFolder::open_logs(const std::string& state) {
  if (state.empty()) {
    logs_ = open_folder(path_ / "logs");
    return hand_over(logs_, path_ / "logs");
  }
  take_state_folder(state);
  write_text(fs::path(state) / MARKER, MARKER_TEXT);
  state_lock_ = locked(fs::path(state) / MARKER, O_RDWR);
  if (state_lock_ == -1) {
    throw LaunchError(STATUS_BAD_USAGE, state + ": a unit is running on this state folder");
  }
  fs::remove_all(fs::path(state) / "logs");
  logs_ = open_folder(fs::path(state) / "logs");
  hand_over(logs_, fs::path(state) / "logs");
  fs::create_symlink(fs::path(state) / "logs", path_ / "logs");
}

void UnitFolder::take_name(const std::string& wanted) {
  const fs::path runtime = path_.parent_path();
  for (int number = 1; number <= MOST_NAMES; ++number) {
    const std::string name = wanted.empty() ? "unit-" + std::to_string(number) : wanted;
    const fs::path path = runtime / name;
    for (int tries = 0; tries < 2; ++tries) {
      if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
        path_ = path;
        name_ = name;
        return;
      }
      if (errno != EEXIST) {
        fail(path, "cannot be created");
      }
      if (!clear_left_over(path)) {
        break;
      }
    }
    if (!wanted.empty()) {
      throw LaunchError(STATUS_BAD_USAGE, "a unit named \"" + wanted + "\" is running");
    }
  }
  throw LaunchError(STATUS_FAILED, "too many units are running");
}

void UnitFolder::describe(const nlohmann::ordered_json& unit) const {
  write_text(path_ / "unit.json", unit.dump() + '\n');
}

int UnitFolder::listen() const {
  const std::string path = (path_ / "control.sock").string();
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw LaunchError(STATUS_FAILED, path + ": name too long for a socket; at most " +
                                         std::to_string(sizeof address.sun_path - 1) + " bytes are allowed");
  }
  std::memcpy(address.sun_path, path.data(), path.size());
  const int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listening == -1 || bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listening, SOMAXCONN) != 0) {
    fail(path, "cannot listen");
  }
  return listening;
}

}  // namespace control::supervisor
