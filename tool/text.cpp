#include "tool/text.h"

#include <cctype>
#include <cstdio>

namespace tool {
namespace {

/// Length of the UTF-8 character at the start of `text`; 0 if there is no valid one.
std::size_t character(std::string_view text) {
  const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length == 0 || text.size() < length) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  // Overlong forms, surrogates and characters beyond U+10FFFF.
  const bool invalid = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
                       (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F);
  return invalid ? 0 : length;
}

/// Whether the character controls a terminal: C0, DEL or C1 (U+0080 to U+009F).
bool is_control(std::string_view one) {
  const auto first = static_cast<unsigned char>(one[0]);
  return (one.size() == 1 && (first < 0x20 || first == 0x7F)) ||
         (one.size() == 2 && first == 0xC2 && static_cast<unsigned char>(one[1]) < 0xA0);
}

std::string escaped(std::string_view bytes) {
  if (bytes == "\n") {
    return "\\n";
  }
  if (bytes == "\t") {
    return "\\t";
  }
  std::string text;
  for (const char byte : bytes) {
    char code[8];
    std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned char>(byte));
    text += code;
  }
  return text;
}

std::string escaped_except(std::string_view text, std::string_view kept) {
  std::string result;
  while (!text.empty()) {
    const std::size_t length = character(text);
    const std::string_view one = text.substr(0, length == 0 ? 1 : length);
    const bool as_it_is = length != 0 && (!is_control(one) || kept.find(one[0]) != std::string_view::npos);
    result += as_it_is ? std::string(one) : escaped(one);
    text.remove_prefix(one.size());
  }
  return result;
}

}  // namespace

std::size_t valid_utf8(std::string_view text) {
  std::size_t valid = 0;
  while (valid < text.size()) {
    const std::size_t length = character(text.substr(valid));
    if (length == 0) {
      break;
    }
    valid += length;
  }
  return valid;
}

std::string printable(std::string_view text) {
  return escaped_except(text, "");
}

std::string printable_lines(std::string_view text) {
  return escaped_except(text, "\n\t");
}

std::size_t width(std::string_view text) {
  std::size_t count = 0;
  for (const char byte : text) {
    count += (static_cast<unsigned char>(byte) & 0xC0) != 0x80 ? 1 : 0;
  }
  return count;
}

std::string clipped(std::string_view text, std::size_t columns) {
  if (width(text) <= columns) {
    return std::string(text);
  }
  if (columns == 0) {
    return "";
  }
  std::size_t end = 0;
  for (std::size_t count = 0; end < text.size(); ++end) {
    if ((static_cast<unsigned char>(text[end]) & 0xC0) != 0x80 && ++count == columns) {
      break;
    }
  }
  return std::string(text.substr(0, end)) + "…";
}

std::string padded(std::string_view text, std::size_t columns) {
  std::string result(text);
  const std::size_t used = width(text);
  return used < columns ? result.append(columns - used, ' ') : result;
}

std::string lower_case(std::string text) {
  for (char& each : text) {
    each = static_cast<char>(std::tolower(static_cast<unsigned char>(each)));
  }
  return text;
}

}  // namespace tool
