#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace control::client {

/// A running unit.
struct FoundUnit {
  std::string name;
  std::filesystem::path folder;  ///< holds control.sock
  pid_t supervisor;

  std::filesystem::path socket() const { return folder / "control.sock"; }
};

/// The folder of this user's units, made if it is missing: unit/ in $XDG_RUNTIME_DIR, or /tmp/unit-<uid>. Throws
/// ConnectionError unless it is a directory of this user with mode 0700, and no link.
std::filesystem::path runtime_folder();

/// Whether a unit may have this name: 1 to 32 small letters, digits and hyphens, no hyphen first.
bool is_unit_name(const std::string& name);

/// The running units, by name. Removes folders of units that ended without doing so. Throws ConnectionError as
/// runtime_folder().
std::vector<FoundUnit> list_units();

/// The running unit of that name; "": the only one. Throws NoSuchUnit, and ConnectionError as runtime_folder().
FoundUnit find_unit(const std::string& name);

struct Launched {
  FoundUnit unit;
  int lifeline;  ///< the unit ends when the last copy of this descriptor is closed; -1 for a detached unit
};

struct LaunchOptions {
  std::filesystem::path program = {};             ///< default: unit-control beside the running program
  std::function<void(int descriptor)> wait = {};  ///< called before blocking; may throw: the unit then ends
};

/// Starts a unit and returns once it is ready. `launch`: the launch document; with `detach` true, the unit outlives its
/// starter. Signals of the terminal do not reach the unit. Throws LaunchError.
Launched start_unit(const nlohmann::json& launch, const LaunchOptions& options = {});

}  // namespace control::client
