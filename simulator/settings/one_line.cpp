#include "simulator/settings/one_line.h"

#include <cstdio>

#include "simulator/model/utf8.h"

namespace simulator::settings {
namespace {

using nlohmann::json;

/// Deeper values are not written out: writing them is recursive.
constexpr int WRITTEN_DEPTH = 8;

std::uint32_t code_point(std::string_view sequence) {
  constexpr unsigned char MASKS[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t code = static_cast<unsigned char>(sequence[0]) & MASKS[sequence.size()];
  for (const char each : sequence.substr(1)) {
    code = code << 6 | (static_cast<unsigned char>(each) & 0x3F);
  }
  return code;
}

bool is_control(std::uint32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x200E || code == 0x200F ||
         (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

std::string escaped(const char* form, std::uint32_t code) {
  char text[16];
  std::snprintf(text, sizeof text, form, code);
  return text;
}

std::string shown(std::string_view sequence, bool is_whole) {
  if (!is_whole) {
    std::string bytes;
    for (const char each : sequence) {
      bytes += escaped("\\x%02x", static_cast<unsigned char>(each));
    }
    return bytes;
  }
  const std::uint32_t code = code_point(sequence);
  switch (code) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return is_control(code) ? escaped("\\u%04x", code) : std::string(sequence);
  }
}

bool is_deeper(const json& value, int depth) {
  if (!value.is_structured()) {
    return false;
  }
  if (depth == 0) {
    return true;
  }
  for (const json& each : value) {
    if (is_deeper(each, depth - 1)) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::string one_line(std::string_view text, std::size_t limit) {
  std::string line;
  for (std::size_t characters = 0; !text.empty(); ++characters) {
    if (characters == limit) {
      return line + "...";
    }
    const auto [length, is_whole] = model::first_sequence(text);
    line += shown(text.substr(0, length), is_whole);
    text.remove_prefix(length);
  }
  return line;
}

std::string value_text(const json& value) {
  if (is_deeper(value, WRITTEN_DEPTH)) {
    return value.is_object() ? "{...}" : "[...]";
  }
  return one_line(value.dump(-1, ' ', false, json::error_handler_t::replace), SHOWN_AT_MOST);
}

}  // namespace simulator::settings
