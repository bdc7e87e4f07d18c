#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tool {

/// A dialog as the control service describes it: {"id","title","text","buttons","size","waits","answer","answered"}.
/// Whether it waits for an answer.
bool is_open(const nlohmann::ordered_json& dialog);
/// The labels of its buttons, in order.
std::vector<std::string> button_labels(const nlohmann::ordered_json& dialog);
/// The label that is meant by typing it, in any case, or its number, counted from 1; none if there is no such button.
std::optional<std::string> button_meant(const nlohmann::ordered_json& dialog, const std::string& typed);
/// The dialog as text: title and size, text, buttons, the answer if there is one.
std::string dialog_as_text(const nlohmann::ordered_json& dialog);
/// One line for the live screen: title, first line of the text, buttons.
std::string dialog_as_line(const nlohmann::ordered_json& dialog);

}  // namespace tool
