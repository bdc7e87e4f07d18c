#include "control/service/member_text.h"

namespace control::service {
namespace {

constexpr std::string_view SPACE = " \t\r\n";

/// The position behind the string that begins at `at`.
std::size_t behind_string(std::string_view text, std::size_t at) {
  for (++at; text[at] != '"'; ++at) {
    if (text[at] == '\\') {
      ++at;
    }
  }
  return at + 1;
}

/// The position of the comma or bracket that ends the value at `at`.
std::size_t behind_value(std::string_view text, std::size_t at) {
  for (std::size_t depth = 0;;) {
    switch (text[at]) {
      case '"':
        at = behind_string(text, at);
        continue;
      case '{':
      case '[':
        ++depth;
        break;
      case '}':
      case ']':
        if (depth-- == 0) {
          return at;
        }
        break;
      case ',':
        if (depth == 0) {
          return at;
        }
        break;
      default:
        break;
    }
    ++at;
  }
}

}  // namespace

std::string_view member_text(std::string_view document, std::string_view name) {
  std::size_t at = document.find('{') + 1;
  for (;;) {
    at = document.find_first_not_of(SPACE, at);
    if (document[at] == '}') {
      return {};
    }
    const std::size_t key = at + 1;
    at = behind_string(document, at);
    const bool found = document.substr(key, at - 1 - key) == name;
    const std::size_t value = document.find_first_not_of(SPACE, document.find(':', at) + 1);
    at = behind_value(document, value);
    if (found) {
      const std::size_t end = document.find_last_not_of(SPACE, at - 1);
      return document.substr(value, end + 1 - value);
    }
    if (document[at] == '}') {
      return {};
    }
    ++at;
  }
}

}  // namespace control::service
