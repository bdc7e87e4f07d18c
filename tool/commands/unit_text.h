#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "control/client/client.h"

namespace tool {

/// The unit's description by its control service; of a unit that does not answer within 2 s, the name, the state "not
/// answering" and the supervisor.
nlohmann::ordered_json described(const control::client::FoundUnit& unit);

/// The host of a described unit in a word or a few: "running", "killed by signal 11 (Segmentation fault)", "none".
std::string host_in_words(const nlohmann::ordered_json& unit);

}  // namespace tool
