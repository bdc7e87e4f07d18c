#include "simulator/settings/settings.h"

#include <algorithm>

#include "simulator/settings/fault_text.h"

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
      return value.is_string() && is_choice(setting, kind_in(value.get<std::string>()));
    case SettingType::OPTIONAL_TEXT:
      return value.is_null() ||
             (value.is_string() && value.get<std::string>().size() <= static_cast<std::size_t>(setting.maximum));
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

/// The values that the setting accepts, to complete "must be".
std::string demand_of(const Setting& setting) {
  const std::string range = std::to_string(setting.minimum) + " to " + std::to_string(setting.maximum);
  switch (setting.type) {
    case SettingType::NUMBER:
      return "a whole number from " + range;
    case SettingType::WORD:
      return "a whole number from " + range + " or hexadecimal text such as \"0x1a\"";
    case SettingType::DURATION:
      return "a whole number from " + range + " or " + choice_list(setting);
    case SettingType::FLAG:
      return "true or false";
    case SettingType::CHOICE:
    case SettingType::FAULT:
      return "one of " + choice_list(setting);
    case SettingType::OPTIONAL_TEXT:
      return "text of at most " + std::to_string(setting.maximum) + " bytes or null";
  }
  return "";
}

/// Throws SettingError if a parameter of the fault is wrong.
void check_fault(const std::string& name, const std::string& text) {
  try {
    fault_of(text);
  } catch (const std::invalid_argument& error) {
    throw SettingError(name, error.what());
  }
}

Setting found(const std::string& name) {
  auto setting = find_setting(name);
  if (!setting) {
    throw SettingError(name, "no such setting");
  }
  return *std::move(setting);
}

}  // namespace

SettingError::SettingError(const std::string& setting, const std::string& why)
    : std::runtime_error(setting + ": " + why), name(setting), reason(why) {}

void check(const Setting& setting, const json& value) {
  if (!takes(setting, value)) {
    const std::string given = value.dump(-1, ' ', false, json::error_handler_t::replace);
    throw SettingError(setting.name, "must be " + demand_of(setting) + ", not " + given);
  }
  if (setting.type == SettingType::FAULT) {
    check_fault(setting.name, value.get<std::string>());
  }
}

json get_setting(UnitModel& unit, const std::string& name) {
  return found(name).get(unit);
}

void set_setting(UnitModel& unit, const std::string& name, const json& value) {
  const Setting setting = found(name);
  check(setting, value);
  setting.set(unit, value);
}

void set_setting_from_text(UnitModel& unit, const std::string& name, const std::string& text) {
  const Setting setting = found(name);
  json value = json::parse(text, nullptr, false);
  const bool wants_text = setting.type == SettingType::OPTIONAL_TEXT || setting.type == SettingType::CHOICE ||
                          setting.type == SettingType::FAULT;
  if (value.is_discarded() || (wants_text && !value.is_string() && !value.is_null())) {
    value = text;
  }
  check(setting, value);
  setting.set(unit, value);
}

}  // namespace simulator::settings
