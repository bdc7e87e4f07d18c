#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "simulator/model/unit_model.h"

namespace tool {

/// The unit's state as its hardware object tells it, as one JSON document: versions, temperatures, power.
nlohmann::ordered_json read_unit_state(class HostClient& host, std::chrono::milliseconds patience);

/// The same as text for people, one line an item.
std::string as_text(const nlohmann::ordered_json& state);

}  // namespace tool
