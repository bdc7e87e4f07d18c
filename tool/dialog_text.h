#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "simulator/model/gui.h"

namespace tool {

/// The labels of a dialog's buttons, in order: Cancel and Ok for "Cancel,1|Ok,0".
std::vector<std::string> button_labels(const simulator::model::Dialog& dialog);
nlohmann::ordered_json as_json(const simulator::model::Dialog& dialog);
/// A dialog as readable text: title and size, text, buttons, the answer if there is one.
std::string as_text(const simulator::model::Dialog& dialog);

}  // namespace tool
