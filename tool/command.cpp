#include "tool/command.h"

#include <algorithm>

#include "tool/text.h"

namespace tool {
namespace {

std::string form_of(const Option& option) {
  std::string form = option.letter != 0 ? std::string("-") + option.letter + ", " : "    ";
  form += "--" + option.name;
  return option.value.empty() ? form : form + " " + option.value;
}

std::string form_of(const Operand& operand) {
  switch (operand.count) {
    case Count::ONE:
      return operand.name;
    case Count::AT_MOST_ONE:
      return "[" + operand.name + "]";
    case Count::ANY:
      return "[" + operand.name + "…]";
    case Count::SOME:
      return operand.name + "…";
  }
  return "";
}

/// Rows of a form and its explanation, the explanations below each other.
std::string listed(const std::vector<std::pair<std::string, std::string>>& rows) {
  std::size_t columns = 0;
  for (const auto& row : rows) {
    columns = std::max(columns, width(row.first));
  }
  std::string text;
  for (const auto& [form, help] : rows) {
    text += "  " + padded(form, columns + 2) + help + '\n';
  }
  return text;
}

}  // namespace

Option unit_option() {
  return {"unit", 'u', "NAME", "unit to use (default: the only running one)", false, Offer::UNITS};
}

Option json_option() {
  return {"json", 0, "", "print JSON"};
}

Option help_option() {
  return {"help", 'h', "", "print this help and exit"};
}

std::string help_of(const Command& command) {
  std::string usage = "Usage: unit " + command.name + " [OPTION…]";
  std::vector<std::pair<std::string, std::string>> operands;
  for (const Operand& operand : command.operands) {
    usage += " " + form_of(operand);
    if (!operand.help.empty()) {
      operands.emplace_back(operand.name, operand.help);
    }
  }
  std::vector<std::pair<std::string, std::string>> options;
  for (const Option& option : command.options) {
    options.emplace_back(form_of(option), option.help + (option.repeatable ? "; repeatable" : ""));
  }
  options.emplace_back(form_of(help_option()), help_option().help);
  std::string text = usage + "\n\n" + command.help + ".\n";
  if (!operands.empty()) {
    text += "\nArguments:\n" + listed(operands);
  }
  return text + "\nOptions:\n" + listed(options) + "\nSee unit-" + command.name + "(1).\n";
}

std::string overview(const std::vector<Command>& commands) {
  std::string text = "Usage: unit COMMAND [OPTION…] [ARGUMENT…]\n\nRuns and controls simulated units.\n";
  std::size_t columns = 0;
  for (const Command& command : commands) {
    columns = std::max(columns, command.name.size());
  }
  std::string group;
  for (const Command& command : commands) {
    if (command.group.empty()) {
      continue;
    }
    if (command.group != group) {
      group = command.group;
      text += "\n" + group + ":\n";
    }
    text += "  " + padded(command.name, columns + 2) + command.help + "\n";
  }
  return text + "\nSee \"unit COMMAND --help\" and unit(1).\n";
}

}  // namespace tool
