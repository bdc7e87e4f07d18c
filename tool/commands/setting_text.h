#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace tool {

/// A setting as the control service describes it: {"name","type","unit","minimum","maximum","choices","doc","value"}
/// and "reason" if the value cannot be read.

/// Name, value, unit and reason only.
nlohmann::ordered_json value_of(const nlohmann::ordered_json& setting);
/// The value on lines of its own: a text as it is, anything else as JSON.
std::string value_as_lines(const nlohmann::ordered_json& setting);
/// The value in one line.
std::string value_as_cell(const nlohmann::ordered_json& setting);
/// A table of name, value and unit.
std::string values_as_table(const nlohmann::ordered_json& settings);
/// The values that the setting accepts: "0..100", "true, false", "never".
std::string range_of(const nlohmann::ordered_json& setting);

}  // namespace tool
