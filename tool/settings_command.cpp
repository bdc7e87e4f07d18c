#include "simulator/settings/settings.h"

#include <cstdio>
#include <memory>

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/running_unit.h"

namespace tool {
namespace {

using nlohmann::ordered_json;
using simulator::model::UnitModel;
using simulator::settings::Setting;
using simulator::settings::SettingType;

const char* name_of(SettingType type) {
  switch (type) {
    case SettingType::NUMBER:
      return "number";
    case SettingType::WORD:
      return "word";
    case SettingType::DURATION:
      return "duration";
    case SettingType::FLAG:
      return "flag";
    case SettingType::CHOICE:
      return "choice";
    case SettingType::OPTIONAL_TEXT:
      return "text";
    case SettingType::FAULT:
      return "fault";
  }
  return "";
}

bool is_ranged(SettingType type) {
  return type == SettingType::NUMBER || type == SettingType::WORD || type == SettingType::DURATION;
}

ordered_json describe(const Setting& setting) {
  ordered_json row = {{"name", setting.name}, {"type", name_of(setting.type)}, {"unit", setting.unit}};
  if (is_ranged(setting.type)) {
    row["minimum"] = setting.minimum;
    row["maximum"] = setting.maximum;
  }
  if (!setting.choices.empty()) {
    row["choices"] = setting.choices;
  }
  row["doc"] = setting.doc;
  return row;
}

/// A short description of the values that the setting accepts.
std::string kind(const Setting& setting) {
  std::string text = name_of(setting.type);
  if (is_ranged(setting.type)) {
    text += " " + std::to_string(setting.minimum) + ".." + std::to_string(setting.maximum);
  }
  for (const std::string& choice : setting.choices) {
    text += " " + choice;
  }
  return setting.unit.empty() ? text : text + " (" + setting.unit + ")";
}

/// Runs `action`; an invalid name or value is bad usage.
template <typename Action>
auto with_usage_errors(Action action) {
  try {
    return action();
  } catch (const simulator::settings::SettingError& error) {
    throw CommandError(STATUS_BAD_USAGE, error.what());
  }
}

}  // namespace

void list_settings(const SettingOptions& options) {
  ordered_json rows = ordered_json::array();
  for (const Setting& setting : simulator::settings::settings()) {
    if (options.json) {
      rows.push_back(describe(setting));
    } else {
      std::printf("%-44s %s\n    %s\n", setting.name.c_str(), kind(setting).c_str(), setting.doc.c_str());
    }
  }
  if (options.json) {
    std::printf("%s\n", rows.dump().c_str());
  }
}

void get_setting(const SettingOptions& options) {
  UnitModel model = options.unit.model();
  const nlohmann::json value = with_usage_errors([&] { return simulator::settings::get_setting(model, options.key); });
  if (options.json) {
    std::printf("%s\n", ordered_json{{"name", options.key}, {"value", value}}.dump().c_str());
  } else {
    std::printf("%s\n", value.is_string() ? value.get<std::string>().c_str() : value.dump().c_str());
  }
}

void set_setting(const SettingOptions& options) {
  UnitModel model = options.unit.model();
  with_usage_errors([&] { simulator::settings::set_setting_from_text(model, options.key, options.value); });
}

}  // namespace tool
