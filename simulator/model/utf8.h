#pragma once

#include <cstddef>
#include <string_view>

namespace simulator::model {

/// The bytes at the start of a text that belong to one UTF-8 sequence.
struct Utf8Sequence {
  std::size_t length;  ///< 1 to 4
  bool is_whole;       ///< well-formed
};

/// The sequence at the start of the text, which is not empty.
Utf8Sequence first_sequence(std::string_view text) noexcept;
/// Whether the whole text is well-formed UTF-8.
bool is_utf8(std::string_view text) noexcept;

}  // namespace simulator::model
