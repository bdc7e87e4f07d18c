#include "tool/prompt.h"

#include <unistd.h>

#include <cerrno>

#include "tool/dialog_text.h"
#include "tool/errors.h"
#include "tool/output.h"
#include "tool/text.h"

namespace tool {

using nlohmann::ordered_json;

void Prompt::say(const std::string& text) const {
  if (screen_ == stdout) {
    print(text);
    flush_output();
  } else {
    std::fputs(text.c_str(), screen_);
  }
}

std::string Prompt::ask(const ordered_json& dialog) {
  say(dialog_as_text(dialog));
  for (;;) {
    say("answer: ");
    const std::optional<std::string> line = read_line();
    if (!line) {
      throw CommandError(STATUS_FAILED, "standard input ended before the question was answered");
    }
    if (const auto label = button_meant(dialog, *line)) {
      return *label;
    }
    say("no button \"" + printable(*line) + "\"\n");
  }
}

/// One line of standard input; none at its end. Read byte by byte: the rest of the input is left to others.
std::optional<std::string> Prompt::read_line() {
  std::string line;
  for (;;) {
    output_.wait_readable(STDIN_FILENO);
    char byte = 0;
    const ssize_t size = read(STDIN_FILENO, &byte, 1);
    if (size == 1 && byte == '\n') {
      return line;
    }
    if (size == 1) {
      line += byte;
    } else if (size == 0 || errno != EINTR) {
      return line.empty() ? std::nullopt : std::optional(line);
    }
  }
}

}  // namespace tool
