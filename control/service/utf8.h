#pragma once

#include <string_view>

namespace control::service {

/// The length of the text without an incomplete character at its end, in bytes. Text that is no UTF-8 counts as
/// complete.
inline std::size_t complete_characters(std::string_view text) {
  for (std::size_t back = 1; back <= 3 && back <= text.size(); ++back) {
    const auto byte = static_cast<unsigned char>(text[text.size() - back]);
    if ((byte & 0xc0) != 0x80) {
      const std::size_t needed = byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : byte >= 0xc0 ? 2 : 1;
      return needed > back ? text.size() - back : text.size();
    }
  }
  return text.size();
}

}  // namespace control::service
