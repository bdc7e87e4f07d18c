#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace simulator::model {

/// A file of the unit's kernel drivers.
struct SysfsFile {
  std::string_view name;  ///< "celsius"
  std::string_view path;  ///< below the root, "class/hwmon/hwmon0/device/celsius"
  std::string_view doc;   ///< what it holds
};

/// The sysfs files that the unit has: FPGA_ver, Board_rev, CPLD_ver, celsius, max_brightness, brightness, bl_power.
const std::array<SysfsFile, 7>& sysfs_files() noexcept;

/// The texts of the unit's sysfs files. The files are authoritative: changes by the unit's programs are visible here.
/// Any thread.
class SysfsFiles {
public:
  /// `root`: the folder that the unit sees as /sys.
  explicit SysfsFiles(std::string root) : root_(std::move(root)) {}

  /// The file's text, 64 KiB of it at most; none if there is no such regular file. Follows no link and never blocks.
  std::optional<std::string> text(const SysfsFile& file) const;
  /// Replaces the file's text atomically and creates its folders; none removes the file. Throws std::system_error.
  void set_text(const SysfsFile& file, const std::optional<std::string>& text) const;
  /// Makes the file impossible to open, for reading and for writing, until its text is set. Throws std::system_error.
  void block(const SysfsFile& file) const;

  const std::string& root() const noexcept { return root_; }

private:
  std::string root_;
};

}  // namespace simulator::model
