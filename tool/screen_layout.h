#pragma once

#include <string>
#include <vector>

#include "tool/terminal.h"
#include "tool/unit_state.h"

namespace tool {

/// The contents of the live screen.
struct Picture {
  std::string title;
  std::vector<std::string> notices;  ///< lines that must be seen: a dialog that waits, an operation that hangs
  std::vector<Section> sections;
  std::vector<std::string> output;  ///< last lines of the host, oldest first
};

/// The picture as lines that fit a terminal of this size. The title and the notices come first; sections stand in two
/// columns from 80 columns on; the output takes the rows that are left. What does not fit is cut, and said to be.
std::vector<std::string> laid_out(const Picture& picture, const TerminalSize& size);

}  // namespace tool
