#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "simulator/model/unit_model.h"

namespace tool {

/// Reads the unit's state from its hardware object as one JSON document: versions, temperatures, power. `patience`:
/// limit for the first published external voltage.
nlohmann::ordered_json read_unit_state(class HostClient& host, std::chrono::milliseconds patience);

/// The same as readable text, one item per line.
std::string as_text(const nlohmann::ordered_json& state);

}  // namespace tool
