#include "simulator/model/json_text.h"

#include <cstddef>

#include "simulator/model/utf8.h"

namespace simulator::model {
namespace {

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
    const auto [length, is_whole] = first_sequence(text);
    quoted += !is_whole ? "\xEF\xBF\xBD" : length == 1 ? escaped(text[0]) : std::string(text.substr(0, length));
    text.remove_prefix(length);
  }
  return quoted + '"';
}

}  // namespace simulator::model
