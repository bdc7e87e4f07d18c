#include "host/arguments.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace host {
namespace {

using nlohmann::json;

template <typename T>
bool fits(const json& value) {
  if (value.is_number_unsigned()) {
    return value.get<std::uint64_t>() <= static_cast<std::uint64_t>(std::numeric_limits<T>::max());
  }
  return value.is_number_integer() && value.get<std::int64_t>() >= std::numeric_limits<T>::min() &&
         value.get<std::int64_t>() <= std::numeric_limits<T>::max();
}

constexpr const char* VERSION_ROWS = "an array of {\"name\": text, \"version\": text}";
constexpr const char* TEMPERATURE_ROWS = "an array of {\"name\": text, \"celsius\": number}";
constexpr const char* FAN_ROWS = "an array of {\"name\": text, \"word1\": number, \"word2\": number}";

}  // namespace

void Arguments::refuse(std::size_t index, const char* name, const char* expected) const {
  throw RequestError(call_ + ": argument " + std::to_string(index + 1) + " (" + name + "): expected " + expected +
                     (index < values_.size() ? ", got " + values_[index].dump() : "; missing"));
}

const json& Arguments::at(std::size_t index, const char* name, const char* expected) const {
  if (index >= values_.size()) {
    refuse(index, name, expected);
  }
  return values_[index];
}

void Arguments::at_most(std::size_t most) const {
  if (values_.size() > most) {
    throw RequestError(call_ + ": expected at most " + std::to_string(most) +
                       (most == 1 ? " argument, got " : " arguments, got ") + std::to_string(values_.size()));
  }
}

int Arguments::number(std::size_t index, const char* name) const {
  constexpr const char* EXPECTED = "a signed 32-bit integer";
  const json& value = at(index, name, EXPECTED);
  if (!fits<std::int32_t>(value)) {
    refuse(index, name, EXPECTED);
  }
  return value.get<int>();
}

unsigned int Arguments::word(std::size_t index, const char* name) const {
  constexpr const char* EXPECTED = "an unsigned 32-bit integer";
  const json& value = at(index, name, EXPECTED);
  if (!fits<std::uint32_t>(value)) {
    refuse(index, name, EXPECTED);
  }
  return value.get<unsigned int>();
}

double Arguments::real(std::size_t index, const char* name) const {
  constexpr const char* EXPECTED = "a number";
  const json& value = at(index, name, EXPECTED);
  if (!value.is_number()) {
    refuse(index, name, EXPECTED);
  }
  return value.get<double>();
}

bool Arguments::flag(std::size_t index, const char* name) const {
  constexpr const char* EXPECTED = "true or false";
  const json& value = at(index, name, EXPECTED);
  if (!value.is_boolean()) {
    refuse(index, name, EXPECTED);
  }
  return value.get<bool>();
}

std::string Arguments::text(std::size_t index, const char* name) const {
  constexpr const char* EXPECTED = "text";
  const json& value = at(index, name, EXPECTED);
  if (!value.is_string()) {
    refuse(index, name, EXPECTED);
  }
  return value.get<std::string>();
}

void Arguments::null(std::size_t index, const char* name) const {
  constexpr const char* EXPECTED = "null (a request cannot name engine framework objects)";
  if (!at(index, name, EXPECTED).is_null()) {
    refuse(index, name, EXPECTED);
  }
}

std::string Arguments::text_before(std::size_t index, const char* name) const {
  return index < values_.size() ? text(index, name) : std::string();
}

const json* Arguments::rows(std::size_t index, const char* expected) const {
  if (index >= values_.size()) {
    return nullptr;
  }
  if (!values_[index].is_array()) {
    refuse(index, "list", expected);
  }
  return &values_[index];
}

std::vector<VERSIONSDATA> Arguments::versions_before(std::size_t index) const {
  std::vector<VERSIONSDATA> list;
  if (const json* given = rows(index, VERSION_ROWS)) {
    try {
      for (const json& row : *given) {
        list.push_back({row.at("version").get<std::string>(), row.at("name").get<std::string>()});
      }
    } catch (const json::exception&) {
      refuse(index, "list", VERSION_ROWS);
    }
  }
  return list;
}

std::vector<TEMPERATUREDATA> Arguments::temperatures_before(std::size_t index) const {
  std::vector<TEMPERATUREDATA> list;
  if (const json* given = rows(index, TEMPERATURE_ROWS)) {
    try {
      for (const json& row : *given) {
        list.push_back({row.at("celsius").get<float>(), row.at("name").get<std::string>()});
      }
    } catch (const json::exception&) {
      refuse(index, "list", TEMPERATURE_ROWS);
    }
  }
  return list;
}

std::vector<FANDATA> Arguments::fans_before(std::size_t index) const {
  std::vector<FANDATA> list;
  if (const json* given = rows(index, FAN_ROWS)) {
    try {
      for (const json& row : *given) {
        list.push_back({row.at("word1").get<std::uint32_t>(), row.at("word2").get<std::uint32_t>(),
                        row.at("name").get<std::string>()});
      }
    } catch (const json::exception&) {
      refuse(index, "list", FAN_ROWS);
    }
  }
  return list;
}

json shortest(float value) {
  if (!std::isfinite(value)) {
    return nullptr;
  }
  // The double that prints as the float's shortest decimal.
  char digits[64];
  const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits - 1, value);
  *end.ptr = '\0';
  return std::strtod(digits, nullptr);
}

json as_json(const std::vector<VERSIONSDATA>& list) {
  json rows = json::array();
  for (const VERSIONSDATA& row : list) {
    rows.push_back({{"name", row.name}, {"version", row.version}});
  }
  return rows;
}

json as_json(const TEMPERATUREDATA& row) {
  return {{"name", row.name}, {"celsius", shortest(row.temperature)}};
}

json as_json(const std::vector<TEMPERATUREDATA>& list) {
  json rows = json::array();
  for (const TEMPERATUREDATA& row : list) {
    rows.push_back(as_json(row));
  }
  return rows;
}

json as_json(const std::vector<FANDATA>& list) {
  json rows = json::array();
  for (const FANDATA& row : list) {
    rows.push_back({{"name", row.name}, {"word1", row.word1}, {"word2", row.word2}});
  }
  return rows;
}

}  // namespace host
