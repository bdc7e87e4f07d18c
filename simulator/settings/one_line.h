#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace simulator::settings {

/// Number of characters of a foreign text that a message shows.
constexpr std::size_t SHOWN_AT_MOST = 60;

/// A foreign text for a message: control characters, also those that change the direction of writing, and bytes that
/// are not UTF-8 are escaped; a text of more than `limit` characters ends with "...".
std::string one_line(std::string_view text, std::size_t limit = SHOWN_AT_MOST);

/// The same for a JSON value. A deeply nested one is shown as "{...}" or "[...]".
std::string value_text(const nlohmann::json& value);

}  // namespace simulator::settings
