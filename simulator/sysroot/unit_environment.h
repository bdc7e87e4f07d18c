#pragma once

#include <string>
#include <utility>
#include <vector>

#include "simulator/sysroot/state_folder.h"

namespace simulator::sysroot {

/// The environment of every program of a unit: paths, the unit's folder, and engine settings that restrict both engines
/// to the unit's loopback interface. Writes OpenDDS's configuration file into the state folder.
std::vector<std::pair<std::string, std::string>> unit_environment(const StateFolder& state, int naming_port);

}  // namespace simulator::sysroot
