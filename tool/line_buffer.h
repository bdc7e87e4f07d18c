#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Splits bytes that arrive in pieces into lines.
class LineBuffer {
public:
  /// A line that is longer is split here.
  static constexpr std::size_t LONGEST_LINE = 8192;

  /// Takes bytes and returns the lines that they complete, without their newlines.
  std::vector<std::string> add(std::string_view bytes);
  /// The line that has no newline yet; empty if there is none. Forgets it.
  std::string rest();

private:
  std::string line_;
};

}  // namespace tool
