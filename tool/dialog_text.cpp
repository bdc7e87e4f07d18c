#include "tool/dialog_text.h"

#include <sstream>

namespace tool {

using simulator::model::Dialog;

std::vector<std::string> button_labels(const Dialog& dialog) {
  std::vector<std::string> labels;
  std::istringstream buttons(dialog.buttons);
  for (std::string button; std::getline(buttons, button, '|');) {
    labels.push_back(button.substr(0, button.rfind(',')));
  }
  return labels;
}

nlohmann::ordered_json as_json(const Dialog& dialog) {
  nlohmann::ordered_json row = {{"id", dialog.id},           {"title", dialog.title}, {"text", dialog.text},
                                {"buttons", dialog.buttons}, {"size", dialog.size},   {"waits", dialog.waits}};
  row["answer"] = dialog.answer ? nlohmann::ordered_json(*dialog.answer) : nlohmann::ordered_json();
  return row;
}

std::string as_text(const Dialog& dialog) {
  std::string text = "[" + dialog.title + (dialog.size.empty() ? "" : ", " + dialog.size) + "]\n";
  std::istringstream lines(dialog.text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') {
      line.pop_back();
    }
    text += line.empty() ? "\n" : "  " + line + '\n';
  }
  std::string buttons;
  for (const std::string& label : button_labels(dialog)) {
    buttons += "  <" + label + ">";
  }
  if (!buttons.empty()) {
    text += buttons + (dialog.answer ? "   answered " + std::to_string(*dialog.answer) : "") + '\n';
  }
  return text;
}

}  // namespace tool
