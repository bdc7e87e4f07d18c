#pragma once

#include <string>

#include "simulator/model/faults.h"

namespace simulator::framework {

/// Crosses the framework's interface at the point: the call is counted and recorded with its arguments (JSON text).
/// Returns what shall go wrong with it; nothing does in a process that belongs to no unit. Any thread.
model::Fault cross(model::Point point, const std::string& args) noexcept;

}  // namespace simulator::framework
