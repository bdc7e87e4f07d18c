#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace simulator::memory {

/// The name of one enumerator. Tables may use their own row types with `key`, `name` and more.
template <typename Enum>
struct Named {
  Enum key;
  std::string_view name;
};

/// A table with one row per enumerator of an enumeration that ends with COUNT.
template <typename Enum, typename Row = Named<Enum>>
using Table = std::array<Row, static_cast<std::size_t>(Enum::COUNT)>;

/// Whether each enumerator has a named row, in order; assert this for every table.
template <typename Row, std::size_t Size>
constexpr bool is_complete(const std::array<Row, Size>& table) noexcept {
  for (std::size_t at = 0; at < Size; ++at) {
    if (static_cast<std::size_t>(table[at].key) != at || table[at].name.empty()) {
      return false;
    }
  }
  return true;
}

template <typename Enum, typename Row, std::size_t Size>
constexpr const Row& row_of(const std::array<Row, Size>& table, Enum key) noexcept {
  return table[static_cast<std::size_t>(key)];
}

/// The enumerator of that name; none if no row has it.
template <typename Row, std::size_t Size>
constexpr auto named_in(const std::array<Row, Size>& table, std::string_view name) noexcept {
  std::optional<decltype(Row::key)> found;
  for (const Row& row : table) {
    if (row.name == name) {
      found = row.key;
    }
  }
  return found;
}

}  // namespace simulator::memory
