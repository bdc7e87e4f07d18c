#include "simulator/settings/json_input.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <vector>

#include "simulator/model/utf8.h"
#include "simulator/settings/one_line.h"

namespace simulator::settings {
namespace {

using nlohmann::json;

[[noreturn]] void refuse(const std::string& text, std::size_t at, const std::string& why) {
  const auto begin = text.begin();
  const auto end = begin + static_cast<std::ptrdiff_t>(at);
  const auto line = std::count(begin, end, '\n') + 1;
  const std::size_t last_end = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
  const std::size_t column = last_end == std::string::npos ? at + 1 : at - last_end;
  throw JsonError("", "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + why);
}

/// Goes through the bytes before they are parsed, because the parser takes a NUL byte for the end of the text and
/// builds any depth. Knows strings and numbers; everything else is left to the parser.
class ByteCheck {
public:
  explicit ByteCheck(const std::string& text) : text_(text) {}

  void run() {
    while (at_ < text_.size()) {
      const auto [length, is_whole] = model::first_sequence(std::string_view(text_).substr(at_));
      if (!is_whole) {
        refuse(text_, at_, "byte that is not UTF-8");
      }
      if (text_[at_] == '\0') {
        refuse(text_, at_, "NUL byte");
      }
      at_ += in_string_ ? inside_string(length) : outside_strings(length);
    }
  }

private:
  /// Each returns the number of bytes taken.
  std::size_t inside_string(std::size_t length) {
    if (text_[at_] == '\\') {
      const bool escapes_quote = at_ + 1 < text_.size() && (text_[at_ + 1] == '"' || text_[at_ + 1] == '\\');
      return escapes_quote ? 2 : 1;
    }
    in_string_ = text_[at_] != '"';
    return length;
  }

  std::size_t outside_strings(std::size_t length) {
    const char here = text_[at_];
    if ((here >= '0' && here <= '9') || here == '-') {
      return number();
    }
    in_string_ = here == '"';
    if ((here == '[' || here == '{') && ++depth_ > DEEPEST_NESTING) {
      refuse(text_, at_, "nested more than " + std::to_string(DEEPEST_NESTING) + " deep");
    }
    depth_ -= here == ']' || here == '}' ? 1 : 0;
    return length;
  }

  std::size_t number() {
    const std::size_t end = std::min(text_.find_first_not_of("0123456789+-.eE", at_), text_.size());
    const std::string digits = text_.substr(at_, end - at_);
    if (std::isinf(std::strtod(digits.c_str(), nullptr))) {
      refuse(text_, at_, "number too large: " + one_line(digits));
    }
    return digits.size();
  }

  const std::string& text_;
  std::size_t at_ = 0;
  int depth_ = 0;
  bool in_string_ = false;
};

/// Detects duplicate keys in a JSON object.
class TwiceWatch {
public:
  bool operator()(json::parse_event_t event, const json& parsed) {
    if (event == json::parse_event_t::object_start) {
      open_.emplace_back();
    } else if (event == json::parse_event_t::object_end) {
      open_.pop_back();
    } else if (event == json::parse_event_t::key) {
      note(parsed.get<std::string>());
    }
    return true;
  }

private:
  struct Object {
    std::string last;
    std::set<std::string> keys;
  };

  void note(const std::string& key) {
    open_.back().last = key;
    if (open_.back().keys.insert(key).second) {
      return;
    }
    std::string name;
    for (const Object& object : open_) {
      name += (name.empty() ? "" : ".") + object.last;
    }
    throw JsonError(one_line(name), "given twice");
  }

  std::vector<Object> open_;
};

/// "line 3, column 5: …", from the message of the JSON parser, with the text that it quotes on one short line.
std::string place_and_reason(const json::exception& error) {
  const std::string text = error.what();
  const std::size_t line = text.find("line ");
  const std::string message = line == std::string::npos ? text : text.substr(line);
  constexpr std::string_view QUOTES = "; last read: '";
  const std::size_t quoted = message.find(QUOTES);
  const std::size_t begin = quoted + QUOTES.size();
  const std::size_t end = message.rfind('\'');
  if (quoted == std::string::npos || end < begin) {
    return one_line(message, message.size());
  }
  // What follows the quotation, "; expected …", holds names of the parser's own.
  const std::size_t rest = std::min(message.find("'; expected ", begin), end);
  return message.substr(0, begin) + one_line(std::string_view(message).substr(begin, rest - begin)) +
         message.substr(rest);
}

}  // namespace

JsonError::JsonError(const std::string& name, const std::string& why)
    : std::runtime_error((name.empty() ? "" : name + ": ") + why), key(name), reason(why) {}

json parsed_json(const std::string& text) {
  ByteCheck(text).run();
  TwiceWatch watch;
  try {
    return json::parse(text, [&watch](int, json::parse_event_t event, json& value) { return watch(event, value); });
  } catch (const json::exception& error) {
    throw JsonError("", place_and_reason(error));
  }
}

}  // namespace simulator::settings
