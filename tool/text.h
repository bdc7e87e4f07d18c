#pragma once

#include <string>
#include <string_view>

namespace tool {

/// Number of bytes before the first that is not valid UTF-8; all if the text is valid.
std::size_t valid_utf8(std::string_view text);
inline bool is_utf8(std::string_view text) {
  return valid_utf8(text) == text.size();
}
/// The text with control characters escaped ("\x1b", "\n"), for one line on a terminal. Invalid bytes are escaped too.
std::string printable(std::string_view text);
/// As printable(), but newlines and tabs stay.
std::string printable_lines(std::string_view text);
/// Number of characters, which is the width in terminal columns (wide and combining characters count as one).
std::size_t width(std::string_view text);
/// The first `columns` characters; a text that is longer ends with "…".
std::string clipped(std::string_view text, std::size_t columns);
/// The text filled up with spaces to `columns` characters.
std::string padded(std::string_view text, std::size_t columns);
std::string lower_case(std::string text);

}  // namespace tool
