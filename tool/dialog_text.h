#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "simulator/model/gui.h"

namespace tool {

/// The labels of a dialog's buttons, in their order; of "Cancel,1|Ok,0": Cancel and Ok.
std::vector<std::string> button_labels(const simulator::model::Dialog& dialog);
nlohmann::ordered_json as_json(const simulator::model::Dialog& dialog);
/// A dialog for people: title and size, its text, its buttons or the answer chosen.
std::string as_text(const simulator::model::Dialog& dialog);

}  // namespace tool
