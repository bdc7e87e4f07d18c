#pragma once

#include <regex>
#include <string>

namespace doubles {

/// The text of standard error without the engine's own lines, which begin with "(<process>|<thread>) ". OpenDDS warns
/// of a sample that arrives before its reader knows of the writer.
inline std::string without_engine_lines(const std::string& text) {
  return std::regex_replace(text, std::regex("\\([0-9]+\\|[0-9]+\\) [^\n]*\n"), "");
}

}  // namespace doubles
