#include "simulator/model/sysfs_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace simulator::model {
namespace {

constexpr std::array<SysfsFile, 7> FILES{{
    {"FPGA_ver", "class/omappci/FPGA_ver", "PCI FPGA version, two words"},
    {"Board_rev", "class/omappci/Board_rev", "control board revision, a number"},
    {"CPLD_ver", "bus/platform/devices/omap-jtag/CPLD_ver", "JTAG CPLD version, two words"},
    {"celsius", "class/hwmon/hwmon0/device/celsius", "processor temperature, degrees Celsius"},
    {"max_brightness", "class/backlight/omap-bl/max_brightness", "highest backlight step"},
    {"brightness", "class/backlight/omap-bl/brightness", "backlight step"},
    {"bl_power", "class/backlight/omap-bl/bl_power", "backlight power switch"},
}};

constexpr std::size_t LONGEST_TEXT = 65536;

std::filesystem::path path_of(const std::string& root, const SysfsFile& file) {
  return std::filesystem::path(root) / file.path;
}

[[noreturn]] void refuse(const std::string& path) {
  throw std::system_error(errno, std::generic_category(), path);
}

/// Files that root creates from outside must belong to the unit's programs, which then run as another user.
void give_to_owner_of(const std::string& root, const std::string& path) {
  struct stat status {};
  if (::geteuid() == 0 && ::stat(root.c_str(), &status) == 0) {
    [[maybe_unused]] const int given = ::lchown(path.c_str(), status.st_uid, status.st_gid);
  }
}

/// A name that is not taken, beside the file.
std::string name_beside(const std::filesystem::path& path) {
  static std::atomic<unsigned> names{0};
  return path.string() + ".new." + std::to_string(::getpid()) + "." + std::to_string(++names);
}

void write_all(int descriptor, const std::string& text, const std::string& path) {
  for (std::size_t at = 0; at < text.size();) {
    const ssize_t written = ::write(descriptor, text.data() + at, text.size() - at);
    if (written < 0) {
      refuse(path);
    }
    at += static_cast<std::size_t>(written);
  }
}

/// Writes a new file; no link that lies in its place is followed.
void write_new(const std::string& path, const std::string& text) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
  if (descriptor < 0) {
    refuse(path);
  }
  try {
    write_all(descriptor, text, path);
  } catch (const std::system_error&) {
    ::close(descriptor);
    throw;
  }
  ::close(descriptor);
}

/// Puts what `make` makes at a name beside the file in the file's place.
template <typename Make>
void replace(const std::string& root, const SysfsFile& file, Make make) {
  const std::filesystem::path path = path_of(root, file);
  std::filesystem::create_directories(path.parent_path());
  const std::string fresh = name_beside(path);
  try {
    make(fresh);
    give_to_owner_of(root, fresh);
    std::filesystem::rename(fresh, path);
  } catch (const std::system_error&) {
    ::unlink(fresh.c_str());
    throw;
  }
}

}  // namespace

const std::array<SysfsFile, 7>& sysfs_files() noexcept {
  return FILES;
}

std::optional<std::string> SysfsFiles::text(const SysfsFile& file) const {
  const int descriptor = ::open(path_of(root_, file).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    return std::nullopt;
  }
  struct stat status {};
  const bool is_file = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
  std::string text(is_file ? LONGEST_TEXT : 0, '\0');
  std::size_t length = 0;
  for (ssize_t got = 1; got > 0 && length < text.size();) {
    got = ::read(descriptor, text.data() + length, text.size() - length);
    length += got > 0 ? static_cast<std::size_t>(got) : 0;
  }
  ::close(descriptor);
  return is_file ? std::optional(text.substr(0, length)) : std::nullopt;
}

void SysfsFiles::set_text(const SysfsFile& file, const std::optional<std::string>& text) const {
  if (!text) {
    std::filesystem::remove(path_of(root_, file));
    return;
  }
  replace(root_, file, [&](const std::string& fresh) { write_new(fresh, *text); });
}

void SysfsFiles::block(const SysfsFile& file) const {
  // No program can create the file to which the link points: its parent is not a folder.
  replace(root_, file, [](const std::string& fresh) {
    if (::symlink("/dev/null/blocked", fresh.c_str()) != 0) {
      refuse(fresh);
    }
  });
}

}  // namespace simulator::model
