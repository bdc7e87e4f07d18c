// Settings and board registers.

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/agent/refusal.h"
#include "simulator/agent/verbs.h"
#include "simulator/settings/values.h"

namespace simulator::agent {
namespace {

using model::UnitModel;
using settings::Setting;
using settings::SettingType;

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

/// The setting with its present value; a value that cannot be read is null, with the reason.
Json described(const Setting& setting, UnitModel& unit) {
  Json row = {{"name", setting.name}, {"type", name_of(setting.type)}, {"unit", setting.unit}};
  row["minimum"] = is_ranged(setting.type) ? Json(setting.minimum) : Json();
  row["maximum"] = is_ranged(setting.type) ? Json(setting.maximum) : Json();
  row["choices"] = setting.choices;
  row["doc"] = setting.doc;
  try {
    row["value"] = setting.get(unit);
  } catch (const std::exception& error) {
    row["value"] = nullptr;
    row["reason"] = error.what();
  }
  return row;
}

Setting found(const std::string& name) {
  auto setting = settings::find_setting(name);
  if (!setting) {
    throw settings::no_such_setting(name);
  }
  return *std::move(setting);
}

Json list(const Arguments& with, UnitModel& unit) {
  Json rows = Json::array();
  if (with.has("names")) {
    for (const std::string& name : with.texts("names")) {
      rows.push_back(described(found(name), unit));
    }
  } else {
    for (const Setting& setting : settings::settings()) {
      rows.push_back(described(setting, unit));
    }
  }
  return {{"settings", rows}};
}

Json set(const Arguments& with, UnitModel& unit, Link& link) {
  const std::string name = with.text("name");
  if (with.has("text")) {
    settings::set_setting_from_text(unit, name, with.text("text"));
  } else {
    settings::set_setting(unit, name, with.any("value"));
  }
  link.send({{"notice", "settings"}});
  return {{"name", name}, {"value", settings::get_setting(unit, name)}};
}

Json patch(const Arguments& with, UnitModel& unit, Link& link) {
  const Json& values = with.any("values");
  if (!values.is_object()) {
    throw Refusal(BAD_REQUEST, "must be an object of settings", "values");
  }
  for (const auto& [name, value] : values.items()) {
    found(name);
  }
  settings::patch(unit, values);
  link.send({{"notice", "settings"}});
  Json now = Json::object();
  for (const auto& [name, value] : values.items()) {
    now[name] = settings::get_setting(unit, name);
  }
  return {{"values", now}};
}

std::string register_name(const Arguments& with) {
  return "board.register." + std::to_string(with.number("space", 0, UINT32_MAX)) + "." +
         std::to_string(with.number("address", 0, UINT32_MAX));
}

Json register_value(const Arguments& with, UnitModel& unit) {
  const std::string name = register_name(with);
  return {{"space", with.any("space")}, {"address", with.any("address")}, {"value", settings::get_setting(unit, name)}};
}

}  // namespace

void add_setting_verbs(Verbs& verbs, UnitModel& unit, Link& link) {
  verbs["settings.list"] = [&unit](const Arguments& with) { return list(with, unit); };
  verbs["settings.get"] = [&unit](const Arguments& with) { return described(found(with.text("name")), unit); };
  verbs["settings.set"] = [&unit, &link](const Arguments& with) { return set(with, unit, link); };
  verbs["settings.patch"] = [&unit, &link](const Arguments& with) { return patch(with, unit, link); };
  verbs["registers.get"] = [&unit](const Arguments& with) { return register_value(with, unit); };
  verbs["registers.set"] = [&unit](const Arguments& with) {
    settings::set_setting(unit, register_name(with), with.any("value"));
    return register_value(with, unit);
  };
}

}  // namespace simulator::agent
