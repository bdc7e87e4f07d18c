#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tool/command.h"

namespace tool {

/// A command's arguments, by the names of its options and operands. Asking for a name that the command does not
/// describe throws std::logic_error.
class Arguments {
public:
  /// Sorts the words after the command's name. Throws UsageError. Words are taken verbatim; a word that begins with a
  /// dash and is no negative number is an option unless it follows "--".
  static Arguments parse(const Command& command, const std::vector<std::string>& words);

  const std::string& command() const { return command_; }
  /// Whether the option or operand was given.
  bool has(const std::string& name) const { return !all(name).empty(); }
  /// Its last value; none if it was not given.
  std::optional<std::string> value(const std::string& name) const;
  /// Its last value, "" if it was not given.
  std::string text(const std::string& name) const { return value(name).value_or(""); }
  /// All its values, in order. A switch has one empty value each time it is given.
  const std::vector<std::string>& all(const std::string& name) const;

private:
  friend class Parser;

  std::string command_;
  std::map<std::string, std::vector<std::string>> values_;
};

}  // namespace tool
