#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tool {

/// A typed argument of an operation, parsed as JSON if valid, else taken as text.
nlohmann::json typed_argument(const std::string& text);

/// What the numbers of an operation's answer measure: {"result":"0.01 K"}; empty if none has a unit.
nlohmann::ordered_json units_of(const std::string& operation);

/// An answer as text for people: one "key: value" per line, a list of records as a table below its key; temperatures
/// in degrees Celsius with two decimals, hundredths of a kelvin converted.
std::string answer_as_text(const std::string& operation, const nlohmann::ordered_json& answer);

/// The exception in an answer as text: "TYPE: what"; empty if there is none.
std::string exception_in(const nlohmann::ordered_json& answer);

/// Temperatures for people: "31.01 °C".
std::string celsius(double degrees);
/// Hundredths of a kelvin in degrees Celsius.
double degrees_of(double centikelvin);

}  // namespace tool
