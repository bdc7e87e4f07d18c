#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "simulator/model/unit_model.h"

namespace simulator::settings {

/// The type of a setting.
enum class SettingType {
  NUMBER,         ///< integer within the range
  WORD,           ///< unsigned 32-bit number, as a number or as hexadecimal text ("0x01020300"); shown as a number
  DURATION,       ///< integer within the range, or "never" if allowed
  FLAG,           ///< true or false
  CHOICE,         ///< one of the choices
  OPTIONAL_TEXT,  ///< text of at most `maximum` bytes, or null: absent
  FAULT           ///< a fault as text, "fail value=5 nth=2"; its kind is one of the choices
};

/// One value of the simulated unit that can be set and read while it runs.
struct Setting {
  std::string name;  ///< dotted: "power_supply.reply_delay"; in the unit file each dot is one level of nesting
  SettingType type;
  std::string unit;  ///< "", "us", "ms", "0.1 degC", …
  std::int64_t minimum;
  std::int64_t maximum;
  std::vector<std::string> choices;  ///< CHOICE and FAULT: their names; DURATION: {"never"} if allowed
  std::string doc;                   ///< one line
  std::function<nlohmann::json(model::UnitModel&)> get;
  std::function<void(model::UnitModel&, const nlohmann::json&)> set;  ///< accepts values that passed check()
};

/// An invalid value or name; what() is "name: reason", on one line. Texts from outside are shortened and escaped in it.
class SettingError : public std::runtime_error {
public:
  SettingError(const std::string& setting, const std::string& why, std::string wanted = {});

  std::string name;
  std::string reason;
  std::string expected;  ///< the accepted values, "whole number from 0 to 255"; empty: the error concerns no value
};

/// All settings, in documentation order. Unnamed board registers are the settings board.register.<space>.<address>,
/// both decimal without leading zeros, which find_setting() knows but this list does not contain.
const std::vector<Setting>& settings();
/// The setting of that name; none if there is no such setting. A register with a name of its own is found by both
/// names.
std::optional<Setting> find_setting(const std::string& name);

/// Throws SettingError if the setting does not accept the value.
void check(const Setting& setting, const nlohmann::json& value);

/// Read and set a value of the unit by name. Throw SettingError, with nothing set.
nlohmann::json get_setting(model::UnitModel& unit, const std::string& name);
void set_setting(model::UnitModel& unit, const std::string& name, const nlohmann::json& value);
/// Like set_setting(), with a typed value: parsed as JSON if valid, else taken as text ("never", "38.5\n").
void set_setting_from_text(model::UnitModel& unit, const std::string& name, const std::string& text);

/// Sets several values of the unit: all, or none if one is not accepted or cannot be set. `values`: one object, as in a
/// unit file. Faults are armed last. Throws SettingError.
void patch(model::UnitModel& unit, const nlohmann::json& values);

}  // namespace simulator::settings
