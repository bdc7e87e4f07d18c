#pragma once

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace simulator::settings {

/// A rejected JSON text; what() is "key: reason", or the reason alone if the error concerns no key. One line.
class JsonError : public std::runtime_error {
public:
  JsonError(const std::string& name, const std::string& why);

  std::string key;     ///< dotted name of the key that is given twice; empty: none
  std::string reason;  ///< starts with "line 3, column 5: " unless there is a key
};

/// Levels of nesting that a JSON text may have.
constexpr int DEEPEST_NESTING = 64;

/// Parses one JSON document from outside. Throws JsonError if it is no JSON, if text follows it, if it is no UTF-8 or
/// holds NUL bytes, if it is nested more than DEEPEST_NESTING deep, if a number is too large for a double, or if an
/// object has a key twice.
nlohmann::json parsed_json(const std::string& text);

}  // namespace simulator::settings
