#include "simulator/model/utf8.h"

#include <algorithm>
#include <iterator>

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

}  // namespace

Utf8Sequence first_sequence(std::string_view text) noexcept {
  const auto* const form = std::find_if(std::begin(FORMS), std::end(FORMS), [&](const Form& each) {
    return within(text[0], each.first_low, each.first_high);
  });
  const std::size_t size = form == std::end(FORMS) ? 0 : form->size;
  std::size_t length = 1;
  while (length < size && length < text.size() &&
         (length == 1 ? within(text[1], form->second_low, form->second_high) : within(text[length], 0x80, 0xBF))) {
    ++length;
  }
  return {length, length == size};
}

bool is_utf8(std::string_view text) noexcept {
  while (!text.empty()) {
    const auto [length, is_whole] = first_sequence(text);
    if (!is_whole) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace simulator::model
