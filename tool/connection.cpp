#include "tool/connection.h"

#include "tool/errors.h"

namespace tool {

using control::client::Client;
using control::client::FoundUnit;
using nlohmann::ordered_json;

ordered_json rows_at(Client& client, const std::string& target, const std::string& member) {
  return client.get(target).at(member);
}

FoundUnit chosen_unit(const std::string& name) {
  if (!name.empty()) {
    return control::client::find_unit(name);
  }
  const std::vector<FoundUnit> units = control::client::list_units();
  if (units.empty()) {
    throw UsageError("no unit is running; start one with \"unit run\"");
  }
  if (units.size() > 1) {
    std::string names;
    for (const FoundUnit& unit : units) {
      names += (names.empty() ? "" : ", ") + unit.name;
    }
    throw UsageError("several units are running; choose one with --unit: " + names);
  }
  return units.front();
}

Connection::Connection(const Arguments& arguments) : Connection(chosen_unit(arguments.text("unit"))) {}

Connection::Connection(const FoundUnit& unit) : unit_(unit), client_(unit.socket()) {}

std::vector<std::string> Connection::setting_names() {
  std::vector<std::string> names;
  for (const ordered_json& setting : rows("/v1/settings", "settings")) {
    names.push_back(setting.at("name"));
  }
  return names;
}

std::vector<std::string> Connection::operation_names() {
  std::vector<std::string> names;
  for (const ordered_json& operation : rows("/v1/operations", "operations")) {
    names.push_back(operation.at("call"));
  }
  return names;
}

std::string with_names(const std::string& path, const std::string& parameter, const std::vector<std::string>& names) {
  std::string target = path;
  for (std::size_t i = 0; i < names.size(); ++i) {
    target += (i == 0 ? "?" + parameter + "=" : ",") + control::client::escaped(names[i]);
  }
  return target;
}

}  // namespace tool
