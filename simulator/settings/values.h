#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "simulator/settings/settings.h"

namespace simulator::settings {

/// A setting with a value that has passed check().
struct Value {
  Setting setting;
  nlohmann::json value;
};

/// Maximum number of board.register.… settings among them.
constexpr int REGISTERS_AT_MOST = 4000;

/// The settings in an object whose keys are dotted names or parts of them, each dot one level of nesting, array
/// elements named 0, 1, 2 and so on. Those that arm faults come last: some hold the values that are there when they are
/// armed. Throws SettingError if a name or value is not accepted, a setting is given twice, in whatever spelling, or
/// there are too many registers.
std::vector<Value> checked_values(const nlohmann::json& object);

/// The error for a name that no setting has, with the nearest names.
SettingError no_such_setting(const std::string& name);

/// The number of a decimal text without sign and leading zeros; none for another text and beyond 32 bits.
std::optional<std::uint32_t> decimal_in(std::string_view text);

/// The point whose fault the setting arms.
model::Point point_of(const Setting& setting);

}  // namespace simulator::settings
