#pragma once

#include <string>
#include <vector>

namespace simulator::settings {

/// The settings whose names are nearest to a name that no setting has, nearest first, at most three: names that differ
/// in a few letters, or whose last parts do. None for a name that is like no other.
std::vector<std::string> nearest_names(const std::string& name);

/// `; did you mean "power_supply.temperature"?`; empty if no name is near.
std::string suggestion_for(const std::string& name);

}  // namespace simulator::settings
