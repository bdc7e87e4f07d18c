#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/model/unit_model.h"

namespace simulator::sysroot {

/// A state folder that cannot be used; what() says which and why.
class StateFolderError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// One unit's state, as a folder outside its private root:
///
///     sys/ tmp/ run/ root/   what the unit sees as /sys /tmp /run /root
///     run/unit/              model, events.jsonl, calls.jsonl, host.sock, log/
///     lock                   locked as long as the unit runs
///
/// Owned by whoever starts the unit; where that is root, the four folders belong to the user nobody, as whom the unit's
/// programs run. One thread at a time.
class StateFolder {
public:
  /// A new folder /tmp/unit-…, removed with the object.
  static StateFolder make();
  /// The folder `path`, made where there is none, and kept. What an earlier unit left in it is removed; a folder that
  /// is neither empty nor a state folder is refused, and so is that of a running unit. Throws StateFolderError.
  static StateFolder at(const std::filesystem::path& path);

  StateFolder(StateFolder&& other) noexcept;
  StateFolder& operator=(StateFolder&&) = delete;
  ~StateFolder();

  /// Makes the unit: its model and sysfs files as `values` sets them, the usual shutdown script, empty logs.
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

/// Whether a unit runs on that state folder.
bool is_running(const std::filesystem::path& state);
/// The state folders below /tmp on which units of this user run, in no order.
std::vector<std::filesystem::path> running_units();

}  // namespace simulator::sysroot
