#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

#include <nlohmann/json.hpp>

namespace simulator::channel {

/// Deepest nesting of a document: `[` and `{` that are open at once.
inline constexpr std::size_t DEEPEST = 64;

/// A text that is not one acceptable JSON document; what() is "byte N: reason" (counted from 1) or
/// "key \"NAME\": given twice".
class DocumentError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Parses a text from a stranger: exactly one JSON document in UTF-8, without NUL bytes, duplicate keys or nesting
/// beyond `deepest`, which is checked before anything is built. Throws DocumentError. Any thread.
nlohmann::json parsed_document(std::string_view text, std::size_t deepest = DEEPEST);

}  // namespace simulator::channel
