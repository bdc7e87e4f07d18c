#pragma once

#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

namespace control::supervisor {

/// The folder of one unit below the caller's runtime folder, named after the unit:
///
///     lock           locked while the unit lives
///     unit.json      name, supervisor's process, start time, format version
///     control.sock   where the control service listens
///     logs/          the logs; for root, owned by the service's user. With a state folder: a link to its logs
///
/// Mode 0700. Removed by the destructor. One thread.
class UnitFolder {
public:
  /// Creates and locks the folder. `name`: empty: the first free of unit-1, unit-2, … `state`: folder that keeps the
  /// logs, empty: none; it is created, empty or holds the marker of an earlier unit, whose logs are then removed.
  /// Throws LaunchError, with the state folder untouched.
  UnitFolder(const std::string& name, const std::string& state);
  ~UnitFolder();
  UnitFolder(const UnitFolder&) = delete;
  UnitFolder& operator=(const UnitFolder&) = delete;

  const std::string& name() const noexcept { return name_; }
  const std::filesystem::path& path() const noexcept { return path_; }
  /// The folder of the logs, as an open descriptor.
  int logs() const noexcept { return logs_; }

  /// Writes unit.json.
  void describe(const nlohmann::ordered_json& unit) const;
  /// Binds the socket on which the control service will listen and returns it. Throws LaunchError.
  int listen() const;

private:
  void take_name(const std::string& wanted);
  void open_logs(const std::string& state);
  void close_all();

  std::string name_;
  std::filesystem::path path_;
  int lock_ = -1;
  int logs_ = -1;
  int state_lock_ = -1;
};

/// The user of the control service if root starts a unit. It owns nothing but its logs.
constexpr unsigned SERVICE_USER_OF_ROOT = 65533;

/// The caller's runtime folder: $XDG_RUNTIME_DIR/unit, or /tmp/unit-<uid> if that is not set. Created if missing.
/// Throws LaunchError if it is not a folder of the caller's own that nobody else can enter.
std::filesystem::path runtime_folder();

}  // namespace control::supervisor
