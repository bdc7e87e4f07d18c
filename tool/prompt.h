#pragma once

#include <cstdio>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "tool/host_output.h"

namespace tool {

/// Asks questions of a unit on a stream and reads the answers from standard input; the host's output is shown
/// meanwhile.
class Prompt {
public:
  /// `screen`: stdout or stderr. `output`: outlives the prompt.
  Prompt(std::FILE* screen, HostOutput& output) : screen_(screen), output_(output) {}

  /// Writes the text at once. Throws CommandError if standard output cannot be written.
  void say(const std::string& text) const;
  /// Shows the dialog and returns the label of the button that is chosen by typing its label, in any case, or its
  /// number. Asks again until the answer is valid. Throws CommandError at the end of standard input.
  std::string ask(const nlohmann::ordered_json& dialog);

private:
  std::optional<std::string> read_line();

  std::FILE* screen_;
  HostOutput& output_;
};

}  // namespace tool
