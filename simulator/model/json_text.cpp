#include "simulator/model/json_text.h"

#include <algorithm>
#include <cstddef>

namespace simulator::model {
namespace {

/// The well-formed UTF-8 sequences: first byte, size, and second byte if there is one.
struct Form {
  unsigned char first_low, first_high;
  std::size_t size;
  unsigned char second_low, second_high;
};
constexpr Form FORMS[] = {{0x00, 0x7F, 1, 0, 0},       {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
                          {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
                          {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F}};

constexpr bool within(char byte, unsigned char low, unsigned char high) noexcept {
  return static_cast<unsigned char>(byte) >= low && static_cast<unsigned char>(byte) <= high;
}

/// The number of leading bytes that belong to one sequence; `whole`: the sequence is complete.
std::size_t sequence_at_start_of(std::string_view text, bool& whole) noexcept {
  const auto* const form = std::find_if(std::begin(FORMS), std::end(FORMS), [&](const Form& each) {
    return within(text[0], each.first_low, each.first_high);
  });
  const std::size_t size = form == std::end(FORMS) ? 0 : form->size;
  std::size_t length = 1;
  while (length < size && length < text.size() &&
         (length == 1 ? within(text[1], form->second_low, form->second_high) : within(text[length], 0x80, 0xBF))) {
    ++length;
  }
  whole = length == size;
  return length;
}

std::string escaped(char character) {
  constexpr std::string_view NAMED = "\"\\\b\f\n\r\t";
  constexpr std::string_view NAMES = "\"\\bfnrt";
  constexpr std::string_view DIGITS = "0123456789abcdef";
  if (const std::size_t at = NAMED.find(character); at != std::string_view::npos) {
    return {'\\', NAMES[at]};
  }
  const auto code = static_cast<unsigned char>(character);
  return code < 0x20 ? std::string("\\u00") + DIGITS[code >> 4] + DIGITS[code & 0xF] : std::string(1, character);
}

}  // namespace

std::string json_text(std::string_view text) {
  std::string quoted = "\"";
  while (!text.empty()) {
    bool whole = false;
    const std::size_t length = sequence_at_start_of(text, whole);
    quoted += !whole ? "\xEF\xBF\xBD" : length == 1 ? escaped(text[0]) : std::string(text.substr(0, length));
    text.remove_prefix(length);
  }
  return quoted + '"';
}

}  // namespace simulator::model
