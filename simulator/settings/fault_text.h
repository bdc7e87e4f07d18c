#pragma once

#include <string>

#include "simulator/model/faults.h"

namespace simulator::settings {

/// A fault as text: its kind and the parameters that differ from their defaults, "late value=200 nth=3 times=1". No
/// fault is "none".
std::string text_of(const model::Fault& fault);

/// The kind: the first word of a fault's text.
std::string kind_in(const std::string& text);

/// The fault of that text for that point, which admits its kind. Throws std::invalid_argument if a parameter is wrong
/// or has no effect.
model::Fault fault_of(model::Point point, const std::string& text);

}  // namespace simulator::settings
