#include "tool/unit_state.h"

#include <algorithm>

#include "tool/operations.h"
#include "tool/text.h"

namespace tool {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr std::size_t NAME_COLUMNS = 36;

/// Collects the values of a state; a value that cannot be had becomes null with its reason.
class Reader {
public:
  explicit Reader(const CallOperation& call) : call_(call) {}

  /// Calls the operation for its effect only.
  void call(const std::string& operation, const json& arguments = json::array()) {
    try {
      call_(operation, arguments);
    } catch (const NoValue&) {
      // The values that depend on it say so themselves.
    }
  }

  template <typename Take>
  void read(const json::json_pointer& place, const std::string& operation, const json& arguments, Take take) {
    state_[place] = nullptr;
    try {
      state_[place] = take(call_(operation, arguments));
    } catch (const NoValue& reason) {
      std::string name = place.to_string().substr(1);
      std::replace(name.begin(), name.end(), '/', '.');
      reasons_[name] = reason.what();
    }
  }

  ordered_json state() const {
    ordered_json state = state_;
    if (!reasons_.empty()) {
      state["reasons"] = reasons_;
    }
    return state;
  }

private:
  const CallOperation& call_;
  ordered_json state_ = {{"versions", nullptr}, {"temperatures", nullptr}, {"power", nullptr}};
  ordered_json reasons_ = ordered_json::object();
};

ordered_json result(const ordered_json& answer) {
  return answer.at("result");
}

ordered_json flag(const ordered_json& answer) {
  return answer.at("result").is_boolean() ? answer.at("result") : ordered_json(answer.at("result") != 0);
}

ordered_json charge(const ordered_json& answer) {
  if (!answer.at("result").get<bool>()) {
    throw NoValue("GetBatteryChargeStatus returned false");
  }
  return answer.at("charge");
}

ordered_json known(const ordered_json& answer) {
  if (answer.at("result") == 0) {
    throw NoValue("not known to the library");
  }
  return answer.at("result");
}

/// The rows of a list, name first.
auto rows(const char* list, const char* value) {
  return [list, value](const ordered_json& answer) {
    ordered_json labelled = ordered_json::array();
    for (const ordered_json& row : answer.at(list)) {
      labelled.push_back({{"name", row.at("name")}, {value, row.at(value)}});
    }
    return labelled;
  };
}

/// A list's section, or its reason.
Section list_section(const std::string& title, const ordered_json& state, const char* list,
                     const std::function<std::string(const ordered_json&)>& value) {
  Section section{title, {}};
  if (state.at(list).is_null()) {
    section.rows.emplace_back("not available", state["reasons"].value(list, ""));
    return section;
  }
  for (const ordered_json& row : state.at(list)) {
    section.rows.emplace_back(printable(row.at("name").get<std::string>()), printable(value(row)));
  }
  return section;
}

}  // namespace

ordered_json read_unit_state(const CallOperation& call, int patience_ms) {
  const json none = json::array();
  Reader reader(call);
  reader.read("/versions"_json_pointer, "GetVersionList", none, rows("versions", "version"));
  // Subscribe before the charger query, so that its publication is received.
  reader.call("external_voltage");
  reader.call("GetChargerStatus");
  reader.read("/power/charge_percent"_json_pointer, "GetBatteryChargeStatus", none, charge);
  reader.read("/temperatures"_json_pointer, "GetTemperature", none, rows("temperatures", "celsius"));
  reader.read("/power/battery_present"_json_pointer, "BatteryPresent", none, flag);
  reader.read("/power/external_voltage"_json_pointer, "external_voltage", {patience_ms}, result);
  reader.read("/power/ps_temperature_centikelvin"_json_pointer, "PsTemperature", none, known);
  reader.read("/power/battery_temperature_centikelvin"_json_pointer, "BatteryTemperature", none, known);
  reader.read("/power/mic284_temperature_centikelvin"_json_pointer, "Slot1MIC284Temperature", none, known);
  return reader.state();
}

std::vector<Section> sections_of(const ordered_json& state) {
  const auto shown = [&state](const char* key, const auto& format) -> std::string {
    const ordered_json& value = state.at("power").at(key);
    return value.is_null() ? "not known" : format(value);
  };
  const auto yes_or_no = [](const ordered_json& value) { return std::string(value.get<bool>() ? "yes" : "no"); };
  const auto percent = [](const ordered_json& value) { return value.dump() + " %"; };
  const auto temperature = [](const ordered_json& value) { return celsius(degrees_of(value.get<double>())); };
  return {list_section("Versions", state, "versions",
                       [](const ordered_json& row) { return row.at("version").get<std::string>(); }),
          list_section("Temperatures", state, "temperatures",
                       [](const ordered_json& row) {
                         return row.at("celsius").is_null() ? "not a number" : celsius(row.at("celsius").get<double>());
                       }),
          Section{"Power",
                  {{"Battery charge", shown("charge_percent", percent)},
                   {"Battery present", shown("battery_present", yes_or_no)},
                   {"External voltage", shown("external_voltage", yes_or_no)},
                   {"Power supply temperature", shown("ps_temperature_centikelvin", temperature)},
                   {"Battery temperature", shown("battery_temperature_centikelvin", temperature)},
                   {"MIC284 temperature", shown("mic284_temperature_centikelvin", temperature)}}}};
}

std::string as_text(const std::vector<Section>& sections) {
  std::string text;
  for (const Section& section : sections) {
    text += section.title + '\n';
    for (const auto& [name, value] : section.rows) {
      text += "  " + padded(name, NAME_COLUMNS - 1) + ' ' + value + '\n';
    }
  }
  return text;
}

}  // namespace tool
