#include "tool/unit_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "tool/errors.h"
#include "tool/text.h"

namespace tool {
namespace {

constexpr std::size_t LARGEST_UNIT_FILE = 1024 * 1024;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
  throw UsageError(path + ": " + reason);
}

[[noreturn]] void refuse_unreadable(const std::string& path, int error) {
  refuse(path, std::string("cannot be read: ") + std::strerror(error));
}

/// The bytes of an open regular file, at most one more than a unit file may hold.
std::string bytes_of(const std::string& path, int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) {
    refuse_unreadable(path, errno);
  }
  if (!S_ISREG(status.st_mode)) {
    refuse(path, "not a regular file");
  }
  std::string bytes(LARGEST_UNIT_FILE + 1, '\0');
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t part = read(file, bytes.data() + size, bytes.size() - size);
    if (part < 0 && errno != EINTR) {
      refuse_unreadable(path, errno);
    }
    if (part == 0) {
      break;
    }
    size += part > 0 ? static_cast<std::size_t>(part) : 0;
  }
  bytes.resize(size);
  return bytes;
}

/// Closes a descriptor at the end of its scope.
struct Closer {
  ~Closer() { close(descriptor); }
  int descriptor;
};

}  // namespace

std::string unit_file_text(const std::string& path) {
  // Opening a FIFO or a device waits for nobody.
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (file == -1) {
    refuse_unreadable(path, errno);
  }
  const Closer closer{file};
  std::string text = bytes_of(path, file);
  if (text.size() > LARGEST_UNIT_FILE) {
    refuse(path, "larger than " + std::to_string(LARGEST_UNIT_FILE) + " bytes");
  }
  // Other bytes cannot be passed on; whatever else is wrong is reported where the text is read.
  const std::size_t valid = valid_utf8(text);
  if (valid != text.size()) {
    const std::string_view before = std::string_view(text).substr(0, valid);
    const std::size_t line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    refuse(path, "line " + std::to_string(line) + ", column " + std::to_string(valid - (before.rfind('\n') + 1) + 1) +
                     ": byte that is not UTF-8");
  }
  return text;
}

}  // namespace tool
