#include "simulator/model/sysfs_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
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

std::filesystem::path path_of(const std::string& root, const SysfsFile& file) {
  return std::filesystem::path(root) / file.path;
}

/// Files that root creates from outside must belong to the unit's programs, which then run as another user.
void give_to_owner_of(const std::string& root, const std::filesystem::path& path) {
  struct stat status {};
  if (::geteuid() == 0 && ::stat(root.c_str(), &status) == 0) {
    [[maybe_unused]] const int given = ::lchown(path.c_str(), status.st_uid, status.st_gid);
  }
}

}  // namespace

const std::array<SysfsFile, 7>& sysfs_files() noexcept {
  return FILES;
}

std::optional<std::string> SysfsFiles::text(const SysfsFile& file) const {
  std::ifstream in(path_of(root_, file), std::ios::binary);
  if (!in) {
    return std::nullopt;
  }
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void SysfsFiles::set_text(const SysfsFile& file, const std::optional<std::string>& text) const {
  const std::filesystem::path path = path_of(root_, file);
  if (!text) {
    std::filesystem::remove(path);
    return;
  }
  std::filesystem::create_directories(path.parent_path());
  const std::filesystem::path fresh = path.string() + ".new." + std::to_string(::getpid());
  std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
  out << *text;
  out.close();
  if (!out) {
    throw std::system_error(std::make_error_code(std::errc::io_error), fresh.string());
  }
  give_to_owner_of(root_, fresh);
  std::filesystem::rename(fresh, path);
}

}  // namespace simulator::model
