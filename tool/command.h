#pragma once

#include <string>
#include <vector>

namespace tool {

class Arguments;

/// Kinds of values that the completion knows how to offer.
enum class Offer {
  NOTHING,
  FILES,
  COMMANDS,
  UNITS,
  SETTINGS,
  OPERATIONS,
  SERVICES,
  WORDS  ///< the `words` beside it
};

/// An option of a command, given as --name VALUE, --name=VALUE or -n VALUE; without a value, a switch.
struct Option {
  std::string name;   ///< without its dashes
  char letter = 0;    ///< short form; 0: none
  std::string value;  ///< what the value stands for ("NAME"); empty: a switch
  std::string help;   ///< one line
  bool repeatable = false;
  Offer offer = Offer::NOTHING;
  std::vector<std::string> words = {};
};

/// How often an operand may be given.
enum class Count { ONE, AT_MOST_ONE, ANY, SOME };

/// An operand of a command: an argument that is no option.
struct Operand {
  std::string name;
  std::string help;
  Count count = Count::ONE;
  Offer offer = Offer::NOTHING;
  std::vector<std::string> words = {};
};

/// A command of the program. It describes itself; help, completion and the check of the man pages read this.
struct Command {
  std::string name;
  std::string group;  ///< heading in the overview; empty: hidden
  std::string help;   ///< one line: what it does
  std::vector<Option> options;
  std::vector<Operand> operands;
  /// Runs to completion and returns the exit status. Failures are thrown as CommandError, CommandEnd, or an error of
  /// the control client. Main thread only.
  int (*run)(const Arguments& arguments);
  /// Options end at the first operand: the rest is another program's command line.
  bool passes_on = false;
};

/// Options that many commands have.
Option unit_option();
Option json_option();
/// Every command takes these besides its own.
Option help_option();

/// The text of "unit COMMAND --help".
std::string help_of(const Command& command);
/// The text of "unit --help": every command with its line, by group.
std::string overview(const std::vector<Command>& commands);

}  // namespace tool
