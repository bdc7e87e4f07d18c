#pragma once

#include <string>
#include <utility>
#include <vector>

namespace simulator::sysroot {

/// The port of the naming service inside every unit.
inline constexpr int NAMING_PORT = 2809;

/// The environment of every program of a unit: paths, the unit's folder, and engine settings that restrict both engines
/// to the unit's loopback interface.
std::vector<std::pair<std::string, std::string>> unit_environment(int naming_port = NAMING_PORT);

}  // namespace simulator::sysroot
