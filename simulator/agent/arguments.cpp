#include "simulator/agent/arguments.h"

#include "simulator/agent/refusal.h"

namespace simulator::agent {
namespace {

constexpr std::int64_t DAY_MS = 86'400'000;
constexpr std::size_t LONGEST_SHOWN = 60;

/// The value as JSON, shortened.
std::string shown(const Json& value) {
  std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text.size() > LONGEST_SHOWN) {
    text.resize(LONGEST_SHOWN);
    text += "…";
  }
  return text;
}

[[noreturn]] void refuse(const char* name, const std::string& expected, const Json* value) {
  throw Refusal(BAD_REQUEST, value == nullptr ? "missing" : "must be " + expected + ", not " + shown(*value), name,
                expected);
}

}  // namespace

const Json& Arguments::any(const char* name) const {
  const auto found = with_.find(name);
  if (found == with_.end()) {
    refuse(name, "a value", nullptr);
  }
  return *found;
}

std::string Arguments::text(const char* name) const {
  if (!has(name) || !with_[name].is_string()) {
    refuse(name, "text", has(name) ? &with_[name] : nullptr);
  }
  return with_[name].get<std::string>();
}

std::string Arguments::text(const char* name, const std::string& otherwise) const {
  return has(name) ? text(name) : otherwise;
}

bool Arguments::flag(const char* name) const {
  if (!has(name) || !with_[name].is_boolean()) {
    refuse(name, "true or false", has(name) ? &with_[name] : nullptr);
  }
  return with_[name].get<bool>();
}

bool Arguments::flag(const char* name, bool otherwise) const {
  return has(name) ? flag(name) : otherwise;
}

std::int64_t Arguments::number(const char* name, std::int64_t minimum, std::int64_t maximum) const {
  const std::string expected = "integer from " + std::to_string(minimum) + " to " + std::to_string(maximum);
  if (!has(name)) {
    refuse(name, expected, nullptr);
  }
  const Json& value = with_[name];
  const bool too_large = value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX;
  if (!value.is_number_integer() || too_large || value.get<std::int64_t>() < minimum ||
      value.get<std::int64_t>() > maximum) {
    refuse(name, expected, &value);
  }
  return value.get<std::int64_t>();
}

std::int64_t Arguments::number(const char* name, std::int64_t minimum, std::int64_t maximum,
                               std::int64_t otherwise) const {
  return has(name) ? number(name, minimum, maximum) : otherwise;
}

std::vector<std::string> Arguments::texts(const char* name) const {
  const Json& list = any(name);
  std::vector<std::string> texts;
  for (const Json& each : list) {
    if (!list.is_array() || !each.is_string() || each.get_ref<const std::string&>().find('\0') != std::string::npos) {
      refuse(name, "array of texts", &list);
    }
    texts.push_back(each.get<std::string>());
  }
  if (!list.is_array()) {
    refuse(name, "array of texts", &list);
  }
  return texts;
}

std::vector<std::pair<std::string, std::string>> Arguments::variables(const char* name) const {
  std::vector<std::pair<std::string, std::string>> variables;
  if (!has(name)) {
    return variables;
  }
  const Json& all = with_[name];
  if (!all.is_object()) {
    refuse(name, "object of texts", &all);
  }
  for (const auto& [key, value] : all.items()) {
    if (key.empty() || key.find('=') != std::string::npos || !value.is_string()) {
      refuse(name, "object of texts", &all);
    }
    variables.emplace_back(key, value.get<std::string>());
  }
  return variables;
}

std::optional<std::chrono::milliseconds> Arguments::timeout() const {
  if (!has("timeout_ms")) {
    return std::nullopt;
  }
  return std::chrono::milliseconds(number("timeout_ms", 1, DAY_MS));
}

}  // namespace simulator::agent
