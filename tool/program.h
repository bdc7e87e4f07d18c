#pragma once

#include <string>
#include <vector>

namespace tool {

/// Runs the command line's words, the program's name not included, and returns the exit status. Errors are reported on
/// standard error: "unit: COMMAND: reason". Main thread only.
int run_program(const std::vector<std::string>& words);

}  // namespace tool
