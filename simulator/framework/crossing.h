#pragma once

#include <string>

#include "simulator/model/faults.h"

namespace simulator::framework {

/// Whether this process belongs to a unit whose crossings are watched; else crossing has no effect. Any thread.
bool watched() noexcept;

/// Crosses the framework's interface at the point: counts and records the call with its arguments (JSON text). Returns
/// the fault to apply, none in a process that belongs to no unit. Any thread.
model::Fault cross(model::Point point, const std::string& args) noexcept;

}  // namespace simulator::framework
