#include "control/client/units.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "control/client/descriptor.h"
#include "control/client/errors.h"

namespace control::client {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr std::size_t LARGEST_UNIT_FILE = 64 << 10;
const std::string REMOVED = ".removed-";  // begins the names of folders that are being removed
constexpr int FOLDER = O_DIRECTORY | O_RDONLY | O_NOFOLLOW | O_CLOEXEC;

bool is_removed(const std::string& name) {
  return name.compare(0, REMOVED.size(), REMOVED) == 0;
}

fs::path runtime_path() {
  const char* base = std::getenv("XDG_RUNTIME_DIR");
  return base != nullptr && *base == '/' ? fs::path(base) / "unit"
                                         : fs::path("/tmp/unit-" + std::to_string(::geteuid()));
}

/// Opens the runtime folder after checking it. Throws ConnectionError.
Descriptor open_runtime_folder(const fs::path& path) {
  const auto refuse = [&path](const std::string& reason) -> void {
    throw ConnectionError(path.string() + ": " + reason);
  };
  if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
    refuse(std::string("cannot be made: ") + std::strerror(errno));
  }
  Descriptor folder(::open(path.c_str(), FOLDER));
  struct stat status {};
  if (folder.get() == -1 || ::fstat(folder.get(), &status) != 0) {
    refuse(errno == ELOOP || errno == ENOTDIR ? "must be a directory, not a link or a file"
                                              : std::string("cannot be opened: ") + std::strerror(errno));
  }
  if (status.st_uid != ::geteuid()) {
    refuse("belongs to another user");
  }
  if ((status.st_mode & 07777) != 0700) {
    refuse("must have mode 0700");
  }
  return folder;
}

/// The text of a small regular file; none if it is something else.
std::optional<std::string> read_small(int folder, const char* name) {
  const Descriptor file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (file.get() == -1 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
      static_cast<std::size_t>(status.st_size) > LARGEST_UNIT_FILE) {
    return std::nullopt;
  }
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t size = ::read(file.get(), text.data(), text.size());
  text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
  return text;
}

std::vector<std::string> names_in(int folder) {
  std::vector<std::string> names;
  DIR* listing = ::fdopendir(::openat(folder, ".", FOLDER));
  if (listing == nullptr) {
    return names;
  }
  while (const dirent* entry = ::readdir(listing)) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") {
      names.push_back(name);
    }
  }
  ::closedir(listing);
  std::sort(names.begin(), names.end());
  return names;
}

/// What a folder in the runtime folder is.
enum class Folder { ALIVE, LEFT_OVER, OTHER };

/// Whether the supervisor of a unit's folder holds its lock. If not, `lock` holds it then, so that nobody else clears
/// the folder.
Folder kind_of(int runtime, const std::string& name, Descriptor& lock) {
  const Descriptor folder(::openat(runtime, name.c_str(), FOLDER));
  if (folder.get() == -1) {
    return Folder::OTHER;
  }
  lock = Descriptor(::openat(folder.get(), "lock", O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (lock.get() == -1) {
    // A folder gets its name only once it has its lock; a hidden one may be about to get it.
    return errno == ENOENT && (is_unit_name(name) || is_removed(name)) ? Folder::LEFT_OVER : Folder::OTHER;
  }
  if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
    return is_unit_name(name) ? Folder::ALIVE : Folder::OTHER;
  }
  // A lock without name was in a folder that has been removed meanwhile.
  struct stat status {};
  return ::fstat(lock.get(), &status) == 0 && status.st_nlink != 0 ? Folder::LEFT_OVER : Folder::OTHER;
}

/// Removes a unit's folder. First out of the way: a new unit may take the name.
void remove_folder(int runtime, const fs::path& runtime_path, const std::string& name) {
  const std::string removed = is_removed(name) ? name : REMOVED + std::to_string(::getpid()) + '-' + name;
  std::error_code ignored;
  if (::renameat(runtime, name.c_str(), runtime, removed.c_str()) == 0) {
    fs::remove_all(runtime_path / removed, ignored);
  }
}

std::optional<pid_t> supervisor_of(int unit) {
  const auto text = read_small(unit, "unit.json");
  const json document = text ? json::parse(*text, nullptr, false) : json();
  const json pid = document.is_object() ? document.value("supervisor", json()) : json();
  return pid.is_number_integer() ? std::optional(pid.get<pid_t>()) : std::nullopt;
}

std::string quoted(const std::string& name) {
  return json(name).dump(-1, ' ', false, json::error_handler_t::replace);
}

}  // namespace

fs::path runtime_folder() {
  fs::path path = runtime_path();
  open_runtime_folder(path);
  return path;
}

bool is_unit_name(const std::string& name) {
  const auto fits = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-'; };
  return !name.empty() && name.size() <= 32 && name[0] != '-' && std::all_of(name.begin(), name.end(), fits);
}

std::vector<FoundUnit> list_units() {
  const fs::path path = runtime_path();
  const Descriptor folder = open_runtime_folder(path);
  std::vector<FoundUnit> units;
  for (const std::string& name : names_in(folder.get())) {
    Descriptor lock;
    const Folder kind = kind_of(folder.get(), name, lock);
    if (kind == Folder::LEFT_OVER) {
      remove_folder(folder.get(), path, name);
    } else if (kind == Folder::ALIVE) {
      const Descriptor unit(::openat(folder.get(), name.c_str(), FOLDER));
      if (const auto supervisor = supervisor_of(unit.get())) {
        units.push_back({name, path / name, *supervisor});
      }
    }
  }
  return units;
}

FoundUnit find_unit(const std::string& name) {
  const std::vector<FoundUnit> units = list_units();
  std::string names;
  for (const FoundUnit& unit : units) {
    if (unit.name == name || (name.empty() && units.size() == 1)) {
      return unit;
    }
    names += (names.empty() ? "" : ", ") + unit.name;
  }
  if (units.empty()) {
    throw NoSuchUnit(name.empty() ? "no unit is running" : "no unit named " + quoted(name) + " is running");
  }
  throw NoSuchUnit(name.empty() ? "several units are running: " + names
                                : "no unit named " + quoted(name) + "; running: " + names);
}

}  // namespace control::client
