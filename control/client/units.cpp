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
constexpr int FOLDER = O_DIRECTORY | O_RDONLY | O_NOFOLLOW | O_CLOEXEC;

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
    if (is_unit_name(entry->d_name)) {
      names.emplace_back(entry->d_name);
    }
  }
  ::closedir(listing);
  std::sort(names.begin(), names.end());
  return names;
}

/// Whether the unit's supervisor is gone: nobody holds its lock.
bool is_left_over(int unit) {
  const Descriptor lock(::openat(unit, "lock", O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  return lock.get() == -1 ? errno == ENOENT : ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0;
}

std::optional<pid_t> supervisor_of(int unit) {
  const auto text = read_small(unit, "unit.json");
  const json document = text ? json::parse(*text, nullptr, false) : json();
  const json pid = document.is_object() ? document.value("supervisor", document.value("pid", json())) : json();
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
  // A supervisor holds this lock while it makes its unit's folder, so that none is taken for a left-over.
  ::flock(folder.get(), LOCK_EX);
  std::vector<FoundUnit> units;
  for (const std::string& name : names_in(folder.get())) {
    const Descriptor unit(::openat(folder.get(), name.c_str(), FOLDER));
    if (unit.get() == -1) {
      continue;
    }
    if (is_left_over(unit.get())) {
      std::error_code ignored;
      fs::remove_all(path / name, ignored);
    } else if (const auto supervisor = supervisor_of(unit.get())) {
      units.push_back({name, path / name, *supervisor});
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
