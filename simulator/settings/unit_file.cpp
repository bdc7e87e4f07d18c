#include "simulator/settings/unit_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>

#include "simulator/settings/json_input.h"
#include "simulator/settings/one_line.h"

namespace simulator::settings {
namespace {

constexpr std::size_t LARGEST_FILE = 1 << 20;

/// An open file that closes itself.
struct OpenFile {
  // A FIFO without a writer and a terminal would block.
  explicit OpenFile(const std::string& path)
      : descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
  ~OpenFile() {
    if (descriptor >= 0) {
      ::close(descriptor);
    }
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  const int descriptor;
};

[[noreturn]] void refuse_unreadable(const std::string& path) {
  throw UnitFileError(path, "", std::string("cannot be read: ") + std::strerror(errno));
}

std::string text_in(const OpenFile& file, const std::string& path) {
  std::string text(LARGEST_FILE + 1, '\0');
  std::size_t length = 0;
  for (;;) {
    const ssize_t got = ::read(file.descriptor, text.data() + length, text.size() - length);
    if (got < 0) {
      refuse_unreadable(path);
    }
    length += static_cast<std::size_t>(got);
    if (length > LARGEST_FILE) {
      throw UnitFileError(path, "", "larger than " + std::to_string(LARGEST_FILE) + " bytes");
    }
    if (got == 0) {
      return text.substr(0, length);
    }
  }
}

std::string place(const std::string& path, const std::string& name) {
  const std::string file = one_line(path, std::numeric_limits<std::size_t>::max());
  return file + ": " + (name.empty() ? "" : name + ": ");
}

}  // namespace

UnitFileError::UnitFileError(const std::string& path, const std::string& name, const std::string& why,
                             std::string wanted)
    : std::runtime_error(place(path, name) + why), file(path), key(name), reason(why), expected(std::move(wanted)) {}

UnitFile UnitFile::load(const std::string& path) {
  return parse(text_of(path), path);
}

std::string UnitFile::text_of(const std::string& path) {
  const OpenFile file(path);
  struct stat status {};
  if (file.descriptor < 0 || ::fstat(file.descriptor, &status) != 0) {
    refuse_unreadable(path);
  }
  if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
    throw UnitFileError(path, "", "not a regular file");
  }
  return text_in(file, path);
}

UnitFile UnitFile::parse(const std::string& text, const std::string& name) {
  UnitFile file;
  try {
    file.values_ = checked_values(parsed_json(text));
  } catch (const JsonError& error) {
    throw UnitFileError(name, error.key, error.reason);
  } catch (const SettingError& error) {
    throw UnitFileError(name, error.name, error.reason, error.expected);
  }
  return file;
}

void UnitFile::operator()(model::UnitModel& unit) const {
  for (const Value& each : values_) {
    each.setting.set(unit, each.value);
  }
}

}  // namespace simulator::settings
