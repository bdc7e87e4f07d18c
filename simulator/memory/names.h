#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace simulator::memory {

/// The names of an enumeration's values, in their order; the enumeration ends with COUNT.
template <typename Enum>
using Names = std::array<std::string_view, static_cast<std::size_t>(Enum::COUNT)>;

/// The value's name; empty for a value out of range.
template <typename Enum>
std::string_view name_in(const Names<Enum>& names, Enum value) noexcept {
  const auto index = static_cast<std::size_t>(value);
  return index < names.size() ? names[index] : std::string_view{};
}

/// The value of that name; none where no value has it.
template <typename Enum>
std::optional<Enum> named_in(const Names<Enum>& names, std::string_view name) noexcept {
  for (std::size_t index = 0; index < names.size(); ++index) {
    if (names[index] == name) {
      return static_cast<Enum>(index);
    }
  }
  return std::nullopt;
}

}  // namespace simulator::memory
