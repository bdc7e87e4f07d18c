#include "simulator/settings/settings.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "simulator/model/utf8.h"
#include "simulator/settings/fault_text.h"
#include "simulator/settings/json_input.h"
#include "simulator/settings/nearest_names.h"
#include "simulator/settings/one_line.h"
#include "simulator/settings/values.h"

namespace simulator::settings {
namespace {

using model::UnitModel;
using nlohmann::json;

bool in_range(const Setting& setting, const json& value) {
  if (!value.is_number_integer()) {
    return false;
  }
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(setting.maximum)) {
    return false;
  }
  const auto number = value.get<std::int64_t>();
  return number >= setting.minimum && number <= setting.maximum;
}

bool is_hexadecimal_word(const json& value) {
  if (!value.is_string()) {
    return false;
  }
  const auto text = value.get<std::string>();
  return text.size() > 2 && text.size() <= 10 && text.compare(0, 2, "0x") == 0 &&
         text.find_first_not_of("0123456789abcdefABCDEF", 2) == std::string::npos;
}

bool is_choice(const Setting& setting, const json& value) {
  return value.is_string() && std::count(setting.choices.begin(), setting.choices.end(), value.get<std::string>()) != 0;
}

bool is_printable(const std::string& text) {
  return model::is_utf8(text) &&
         std::none_of(text.begin(), text.end(), [](unsigned char each) { return each < 0x20 || each == 0x7F; });
}

/// The text of a file: printable but for tabs and line ends.
bool is_file_text(const Setting& setting, const json& value) {
  if (!value.is_string()) {
    return false;
  }
  auto text = value.get<std::string>();
  const bool is_short = text.size() <= static_cast<std::size_t>(setting.maximum);
  text.erase(
      std::remove_if(text.begin(), text.end(), [](char each) { return each == '\t' || each == '\n' || each == '\r'; }),
      text.end());
  return is_short && is_printable(text);
}

bool takes(const Setting& setting, const json& value) {
  switch (setting.type) {
    case SettingType::NUMBER:
      return in_range(setting, value);
    case SettingType::WORD:
      return in_range(setting, value) || is_hexadecimal_word(value);
    case SettingType::DURATION:
      return in_range(setting, value) || is_choice(setting, value);
    case SettingType::FLAG:
      return value.is_boolean();
    case SettingType::CHOICE:
      return is_choice(setting, value);
    case SettingType::FAULT:
      return value.is_string() && is_printable(value.get<std::string>()) &&
             is_choice(setting, kind_in(value.get<std::string>()));
    case SettingType::OPTIONAL_TEXT:
      return value.is_null() || is_file_text(setting, value);
  }
  return false;
}

std::string choice_list(const Setting& setting) {
  std::string list;
  for (const std::string& choice : setting.choices) {
    list += (list.empty() ? "" : ", ") + json(choice).dump();
  }
  return list;
}

/// The values that the setting accepts.
std::string expected_of(const Setting& setting) {
  std::string number =
      "whole number from " + std::to_string(setting.minimum) + " to " + std::to_string(setting.maximum);
  switch (setting.type) {
    case SettingType::NUMBER:
      return number;
    case SettingType::WORD:
      return number + " or hexadecimal text such as \"0x1a\"";
    case SettingType::DURATION:
      return number + " or " + choice_list(setting);
    case SettingType::FLAG:
      return "true or false";
    case SettingType::CHOICE:
    case SettingType::FAULT:
      return "one of " + choice_list(setting);
    case SettingType::OPTIONAL_TEXT:
      return "UTF-8 text of at most " + std::to_string(setting.maximum) +
             " bytes, without control characters but tabs and line ends, or null";
  }
  return "";
}

/// Throws SettingError if a parameter of the fault is wrong.
void check_fault(const Setting& setting, const std::string& text) {
  try {
    fault_of(point_of(setting), text);
  } catch (const std::invalid_argument& error) {
    throw SettingError(setting.name, error.what(), expected_of(setting));
  }
}

Setting found(const std::string& name) {
  auto setting = find_setting(name);
  if (!setting) {
    throw no_such_setting(name);
  }
  return *std::move(setting);
}

/// A value that the unit cannot take, such as a file that cannot be written, is an error of the setting.
void apply(UnitModel& unit, const Setting& setting, const json& value) {
  try {
    setting.set(unit, value);
  } catch (const std::system_error& error) {
    throw SettingError(setting.name, std::string("cannot be set: ") + error.what());
  } catch (const std::invalid_argument& error) {
    throw SettingError(setting.name, std::string("cannot be set: ") + error.what());
  }
}

/// Sets the values back to those before, the last one first.
void restore(UnitModel& unit, const std::vector<Value>& values, std::vector<json> before) {
  while (!before.empty()) {
    try {
      values[before.size() - 1].setting.set(unit, before.back());
    } catch (const std::exception&) {
      // The failure that led here is reported.
    }
    before.pop_back();
  }
}

}  // namespace

SettingError::SettingError(const std::string& setting, const std::string& why, std::string wanted)
    : std::runtime_error((setting.empty() ? "" : one_line(setting) + ": ") + why),
      name(one_line(setting)),
      reason(why),
      expected(std::move(wanted)) {}

SettingError no_such_setting(const std::string& name) {
  return {name, "no such setting" + suggestion_for(name)};
}

void check(const Setting& setting, const json& value) {
  if (!takes(setting, value)) {
    const std::string expected = expected_of(setting);
    const bool is_counted = expected.compare(0, 5, "whole") == 0;
    throw SettingError(setting.name,
                       std::string("must be ") + (is_counted ? "a " : "") + expected + ", not " + value_text(value),
                       expected);
  }
  if (setting.type == SettingType::FAULT) {
    check_fault(setting, value.get<std::string>());
  }
}

json get_setting(UnitModel& unit, const std::string& name) {
  return found(name).get(unit);
}

void set_setting(UnitModel& unit, const std::string& name, const json& value) {
  const Setting setting = found(name);
  check(setting, value);
  apply(unit, setting, value);
}

void set_setting_from_text(UnitModel& unit, const std::string& name, const std::string& text) {
  const Setting setting = found(name);
  const bool wants_text = setting.type == SettingType::OPTIONAL_TEXT || setting.type == SettingType::CHOICE ||
                          setting.type == SettingType::FAULT;
  json value = text;
  try {
    json parsed = parsed_json(text);
    if (!wants_text || parsed.is_string() || parsed.is_null()) {
      value = std::move(parsed);
    }
  } catch (const JsonError&) {
    // A text that is no JSON is meant as it is.
  }
  check(setting, value);
  apply(unit, setting, value);
}

void patch(UnitModel& unit, const json& values) {
  const std::vector<Value> checked = checked_values(values);
  std::vector<json> before;
  try {
    for (const Value& each : checked) {
      before.push_back(each.setting.get(unit));
      apply(unit, each.setting, each.value);
    }
  } catch (const std::exception&) {
    restore(unit, checked, before);
    throw;
  }
}

}  // namespace simulator::settings
