#include "tool/operations.h"

#include <cstdio>

#include "tool/tables.h"
#include "tool/text.h"

namespace tool {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr const char* CENTIKELVIN = "0.01 K";
constexpr const char* DEGREES = "degC";

struct MeasuredKey {
  const char* operation;
  const char* key;
  const char* unit;
};

constexpr MeasuredKey MEASURED_KEYS[] = {
    {"PsTemperature", "result", CENTIKELVIN},
    {"BatteryTemperature", "result", CENTIKELVIN},
    {"Slot1MIC284Temperature", "result", CENTIKELVIN},
    {"GetBatteryChargeStatus", "charge", "%"},
    {"GetTemperature", "temperatures.celsius", DEGREES},
    {"rftemp", "result.celsius", DEGREES},
};

std::string unit_of(const std::string& operation, const std::string& key) {
  for (const MeasuredKey& each : MEASURED_KEYS) {
    if (operation == each.operation && key == each.key) {
      return each.unit;
    }
  }
  return "";
}

std::string shown(const ordered_json& value, const std::string& unit) {
  if (value.is_number() && unit == DEGREES) {
    return celsius(value.get<double>());
  }
  if (value.is_number() && unit == CENTIKELVIN) {
    return value == 0 ? "0 (not known)" : value.dump() + " (" + celsius(degrees_of(value.get<double>())) + ")";
  }
  const std::string text =
      value.is_string() ? value.get<std::string>() : value.dump(-1, ' ', false, json::error_handler_t::replace);
  return value.is_number() && !unit.empty() ? text + " " + unit : text;
}

bool is_table(const ordered_json& value) {
  return value.is_array() && !value.empty() && value[0].is_object() && !value[0].empty();
}

std::string as_table(const std::string& operation, const std::string& key, const ordered_json& rows) {
  std::vector<std::string> header;
  for (const auto& [name, value] : rows[0].items()) {
    // A record's name stands first.
    header.insert(name == "name" ? header.begin() : header.end(), name);
  }
  Table table(header);
  for (const ordered_json& row : rows) {
    std::vector<std::string> cells;
    for (const std::string& name : header) {
      cells.push_back(row.contains(name) ? shown(row[name], unit_of(operation, key + "." + name)) : "");
    }
    table.add(cells);
  }
  return table.text(2);
}

}  // namespace

json typed_argument(const std::string& text) {
  json value = json::parse(text, nullptr, false);
  return value.is_discarded() ? json(text) : value;
}

ordered_json units_of(const std::string& operation) {
  ordered_json units = ordered_json::object();
  for (const MeasuredKey& each : MEASURED_KEYS) {
    if (operation == each.operation) {
      units[each.key] = each.unit;
    }
  }
  return units;
}

std::string answer_as_text(const std::string& operation, const ordered_json& answer) {
  std::string text;
  for (const auto& [key, value] : answer.items()) {
    if (is_table(value)) {
      text += key + ":\n" + as_table(operation, key, value);
    } else if (value.is_object()) {
      text += key + ":";
      for (const auto& [name, member] : value.items()) {
        text += " " + name + " " + printable(shown(member, unit_of(operation, key + "." + name)));
      }
      text += "\n";
    } else {
      text += key + ": " + printable(shown(value, unit_of(operation, key))) + "\n";
    }
  }
  return text;
}

std::string exception_in(const ordered_json& answer) {
  const auto exception = answer.find("exception");
  if (exception == answer.end()) {
    return "";
  }
  const ordered_json& what = exception->at("what");
  return exception->at("type").get<std::string>() + (what.is_string() ? ": " + what.get<std::string>() : "");
}

std::string celsius(double degrees) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f °C", degrees);
  return text;
}

double degrees_of(double centikelvin) {
  return (centikelvin - 27315) / 100;
}

}  // namespace tool
