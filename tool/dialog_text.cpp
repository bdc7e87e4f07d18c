#include "tool/dialog_text.h"

#include <sstream>

#include "tool/text.h"

namespace tool {

using nlohmann::ordered_json;

namespace {

std::string buttons_as_text(const ordered_json& dialog) {
  std::string text;
  for (const std::string& label : button_labels(dialog)) {
    text += (text.empty() ? "<" : "  <") + printable(label) + ">";
  }
  return text;
}

}  // namespace

bool is_open(const ordered_json& dialog) {
  return dialog.at("waits").get<bool>() && dialog.at("answer").is_null();
}

std::vector<std::string> button_labels(const ordered_json& dialog) {
  std::vector<std::string> labels;
  for (const ordered_json& button : dialog.at("buttons")) {
    labels.push_back(button.at("label"));
  }
  return labels;
}

std::optional<std::string> button_meant(const ordered_json& dialog, const std::string& typed) {
  const std::vector<std::string> labels = button_labels(dialog);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (lower_case(typed) == lower_case(labels[i]) || typed == std::to_string(i + 1)) {
      return labels[i];
    }
  }
  return std::nullopt;
}

std::string dialog_as_text(const ordered_json& dialog) {
  const std::string size = dialog.value("size", "");
  std::string text =
      "[" + printable(dialog.at("title").get<std::string>()) + (size.empty() ? "" : ", " + printable(size)) + "]\n";
  std::istringstream lines(dialog.at("text").get<std::string>());
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.back() == '\r') {
      line.pop_back();
    }
    text += line.empty() ? "\n" : "  " + printable(line) + '\n';
  }
  const std::string buttons = buttons_as_text(dialog);
  if (!buttons.empty()) {
    const ordered_json answered = dialog.value("answered", ordered_json());
    text +=
        "  " + buttons + (answered.is_string() ? "   answered: " + printable(answered.get<std::string>()) : "") + '\n';
  }
  return text;
}

std::string dialog_as_line(const ordered_json& dialog) {
  std::istringstream lines(dialog.at("text").get<std::string>());
  std::string first;
  std::getline(lines, first);
  if (!first.empty() && first.back() == '\r') {
    first.pop_back();
  }
  return "Dialog \"" + printable(dialog.at("title").get<std::string>()) + "\": " + printable(first) + "  " +
         buttons_as_text(dialog);
}

}  // namespace tool
