#include "tool/unit_state.h"

#include <cstdio>

#include "tool/host_client.h"

namespace tool {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

/// Hundredths of a kelvin as text in degrees Celsius.
std::string in_celsius(const ordered_json& centikelvin) {
  const int value = centikelvin.get<int>();
  if (value == 0) {
    return "not known";
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.2f °C", (value - 27315) / 100.0);
  return text;
}

std::string line(const std::string& name, const std::string& value) {
  std::string text = "  " + name;
  text.resize(std::max<std::size_t>(text.size() + 1, 38), ' ');
  return text + value + '\n';
}

/// The rows, name first.
ordered_json labelled(const json& rows, const char* value) {
  ordered_json labelled_rows = ordered_json::array();
  for (const json& row : rows) {
    labelled_rows.push_back({{"name", row["name"]}, {value, row[value]}});
  }
  return labelled_rows;
}

std::string yes_or_no(const ordered_json& flag) {
  return flag.get<bool>() ? "yes" : "no";
}

}  // namespace

ordered_json read_unit_state(HostClient& host, std::chrono::milliseconds patience) {
  ordered_json state;
  state["versions"] = labelled(host.call("GetVersionList")["versions"], "version");
  // Subscribe before the charger query, so that its publication is received.
  host.call("external_voltage");
  host.call("GetChargerStatus");
  const json charge = host.call("GetBatteryChargeStatus");
  state["temperatures"] = labelled(host.call("GetTemperature")["temperatures"], "celsius");
  ordered_json& power = state["power"];
  power["charge_percent"] = charge["result"].get<bool>() ? charge["charge"] : json();
  power["battery_present"] = host.call("BatteryPresent")["result"].get<int>() != 0;
  power["external_voltage"] = host.call("external_voltage", {patience.count()})["result"];
  power["ps_temperature"] = host.call("PsTemperature")["result"];
  power["battery_temperature"] = host.call("BatteryTemperature")["result"];
  power["mic284_temperature"] = host.call("Slot1MIC284Temperature")["result"];
  return state;
}

std::string as_text(const ordered_json& state) {
  std::string text = "Versions\n";
  for (const ordered_json& row : state["versions"]) {
    text += line(row["name"], row["version"]);
  }
  text += "Temperatures\n";
  for (const ordered_json& row : state["temperatures"]) {
    text += line(row["name"], row["celsius"].dump() + " °C");
  }
  const ordered_json& power = state["power"];
  text += "Power\n";
  text +=
      line("Battery charge", power["charge_percent"].is_null() ? "not known" : power["charge_percent"].dump() + " %");
  text += line("Battery present", yes_or_no(power["battery_present"]));
  text += line("External voltage", yes_or_no(power["external_voltage"]));
  text += line("Power supply temperature", in_celsius(power["ps_temperature"]));
  text += line("Battery temperature", in_celsius(power["battery_temperature"]));
  text += line("MIC284 temperature", in_celsius(power["mic284_temperature"]));
  return text;
}

}  // namespace tool
