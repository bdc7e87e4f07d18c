#include "simulator/model/json_text.h"

#include <cstddef>

namespace simulator::model {
namespace {

constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD";

/// The bytes at the beginning of a text that belong to one character, and whether they are all of it.
struct Sequence {
  std::size_t length;
  bool whole;
};

constexpr std::size_t size_by_lead(unsigned char lead) noexcept {
  if (lead < 0x80) {
    return 1;
  }
  if (lead < 0xC2 || lead > 0xF4) {
    return 0;
  }
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// Overlong forms, surrogates and what lies beyond U+10FFFF show in the byte after the lead.
constexpr bool may_follow(unsigned char lead, unsigned char second) noexcept {
  const unsigned char lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned char highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  return second >= lowest && second <= highest;
}

Sequence first_of(std::string_view text) noexcept {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t size = size_by_lead(lead);
  if (size == 0) {
    return {1, false};
  }
  for (std::size_t at = 1; at < size; ++at) {
    if (at == text.size() || !may_follow(at == 1 ? lead : 0, static_cast<unsigned char>(text[at]))) {
      return {at, false};
    }
  }
  return {size, true};
}

std::string escaped(char character) {
  switch (character) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\b':
      return "\\b";
    case '\f':
      return "\\f";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  constexpr std::string_view DIGITS = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(character);
  return code < 0x20 ? std::string("\\u00") + DIGITS[code >> 4] + DIGITS[code & 0xF] : std::string(1, character);
}

}  // namespace

std::string json_text(std::string_view text) {
  std::string quoted = "\"";
  while (!text.empty()) {
    const Sequence next = first_of(text);
    if (!next.whole) {
      quoted += REPLACEMENT;
    } else if (next.length == 1) {
      quoted += escaped(text[0]);
    } else {
      quoted += text.substr(0, next.length);
    }
    text.remove_prefix(next.length);
  }
  return quoted + '"';
}

}  // namespace simulator::model
