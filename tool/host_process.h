#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace tool {

/// The process number outside of a described unit's host: the descendant of the unit's root whose number inside is that
/// of the host. None if there is no host or it cannot be seen.
std::optional<int> host_pid_outside(const nlohmann::ordered_json& unit);

/// The parent and the innermost number in the text of /proc/PID/status; 0 where there is none.
struct ProcessNumbers {
  int parent = 0;
  int inside = 0;
};
ProcessNumbers numbers_in(const std::string& status);

}  // namespace tool
