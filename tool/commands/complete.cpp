#include <algorithm>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/output.h"
#include "tool/text.h"

namespace tool {
namespace {

using Words = std::vector<std::string>;

/// The candidates for a value. `unit`: the unit that the command line chooses.
Words offered(Offer offer, const Words& words, const std::string& unit) {
  const auto connected = [&unit] { return Connection(chosen_unit(unit)); };
  Words all;
  switch (offer) {
    case Offer::NOTHING:
      break;
    case Offer::FILES:
      // The shell completes file names itself.
      all = {":files"};
      break;
    case Offer::COMMANDS:
      for (const Command& command : commands()) {
        if (!command.group.empty()) {
          all.push_back(command.name);
        }
      }
      break;
    case Offer::UNITS:
      for (const auto& found : control::client::list_units()) {
        all.push_back(found.name);
      }
      break;
    case Offer::SETTINGS:
      all = connected().setting_names();
      break;
    case Offer::OPERATIONS:
      all = connected().operation_names();
      break;
    case Offer::SERVICES:
      all = {"gui_manager", "everybody_engine", "hw_enumerate", "services", "network"};
      break;
    case Offer::WORDS:
      all = words;
      break;
  }
  return all;
}

const Option* option_in(const Command& command, const std::string& word) {
  for (const Option& option : command.options) {
    if (word == "--" + option.name || (option.letter != 0 && word == std::string("-") + option.letter)) {
      return &option;
    }
  }
  return nullptr;
}

/// The candidates for the last of the words that follow the command's name.
Words candidates(const Command& command, const Words& words) {
  std::string unit;
  std::size_t operands = 0;
  const Option* open = nullptr;  // its value comes next
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    if (open != nullptr) {
      unit = open->name == "unit" ? words[i] : unit;
      open = nullptr;
    } else if (const Option* const option = option_in(command, words[i])) {
      open = option->value.empty() ? nullptr : option;
    } else if (words[i].rfind('-', 0) != 0) {
      ++operands;
    }
  }
  if (open != nullptr) {
    return offered(open->offer, open->words, unit);
  }
  if (words.back().rfind('-', 0) == 0) {
    Words names = {"--" + help_option().name};
    for (const Option& option : command.options) {
      names.push_back("--" + option.name);
    }
    return names;
  }
  if (command.operands.empty()) {
    return {};
  }
  // NAME VALUE NAME VALUE…: every second word is a name again.
  const std::size_t index = command.name == "set" ? operands % 2 : std::min(operands, command.operands.size() - 1);
  const Operand& operand = command.operands[index];
  const bool full = operands > index && (operand.count == Count::ONE || operand.count == Count::AT_MOST_ONE);
  return full && command.name != "set" ? Words{} : offered(operand.offer, operand.words, unit);
}

/// Prints the candidates that begin with the last word. Without a unit to ask, there are none.
int run(const Arguments& arguments) {
  Words words = arguments.all("WORD");
  if (words.empty()) {
    words.emplace_back();
  }
  Words found;
  try {
    if (words.size() == 1) {
      found = offered(Offer::COMMANDS, {}, "");
    } else {
      found = candidates(find_command(words.front()), {words.begin() + 1, words.end()});
    }
  } catch (const std::exception&) {
    return 0;
  }
  for (const std::string& each : found) {
    if (each == ":files" || each.rfind(words.back(), 0) == 0) {
      print(printable(each) + '\n');
    }
  }
  return 0;
}

}  // namespace

Command complete_command() {
  return {"__complete",
          "",
          "Print the words that may complete a command line",
          {},
          {{"WORD", "words after \"unit\", the last to be completed", Count::ANY}},
          run,
          true};
}

}  // namespace tool
