#pragma once

#include <string>
#include <utility>
#include <vector>

#include "simulator/sysroot/state_folder.h"

namespace simulator::sysroot {

/// The environment that every program of a unit has: paths, the folder of the unit, and both engines kept to the
/// unit's own loopback interface. Writes the configuration file of an engine that wants one into the state folder.
std::vector<std::pair<std::string, std::string>> unit_environment(const StateFolder& state, int naming_port);

}  // namespace simulator::sysroot
