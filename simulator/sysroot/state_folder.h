#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/model/unit_model.h"

namespace simulator::sysroot {

/// A state folder that cannot be used; what() names it and the reason.
class StateFolderError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// One unit's state, as a folder outside its private root:
///
///     sys/ tmp/ run/ root/   what the unit sees as /sys /tmp /run /root
///     run/unit/              model, events.jsonl, calls.jsonl, host.sock, log/
///     lock                   locked while the unit runs
///
/// Owned by the user who starts the unit; for root, the four folders belong to nobody, the user of the unit's programs.
/// One thread at a time.
class StateFolder {
public:
  /// A new folder /tmp/unit-…, removed by the destructor.
  static StateFolder make();
  /// The folder `path`, created if missing, and kept. The contents of an earlier unit are removed. Throws
  /// StateFolderError if the folder is neither empty nor a state folder, or if a unit is running on it.
  static StateFolder at(const std::filesystem::path& path);

  StateFolder(StateFolder&& other) noexcept;
  StateFolder& operator=(StateFolder&&) = delete;
  ~StateFolder();

  /// Creates the unit: its model and sysfs files with `values`, the usual shutdown script, empty logs.
  void fill(const model::UnitModel::Fill& values) const;

  const std::filesystem::path& path() const noexcept { return path_; }
  std::filesystem::path run() const { return path_ / "run" / "unit"; }

private:
  StateFolder(std::filesystem::path path, bool removed_at_end);
  void lock();
  void make_folders() const;

  std::filesystem::path path_;
  bool removed_at_end_;
  int lock_ = -1;
};

/// Whether a unit is running on the state folder.
bool is_running(const std::filesystem::path& state);
/// The state folders below /tmp of this user's running units, in no order.
std::vector<std::filesystem::path> running_units();

}  // namespace simulator::sysroot
