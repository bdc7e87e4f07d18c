#pragma once

#include <string>

#include "simulator/model/faults.h"

namespace simulator::settings {

/// A fault as text: its kind, then those of its parameters that differ from the usual, "late value=200 nth=3 times=1".
/// No fault is "none".
std::string text_of(const model::Fault& fault);

/// The first word of a fault's text: its kind.
std::string kind_in(const std::string& text);

/// The fault of that text, whose kind must be one. Throws std::invalid_argument, which says what is wrong with a
/// parameter.
model::Fault fault_of(const std::string& text);

}  // namespace simulator::settings
