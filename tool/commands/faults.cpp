#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/output.h"
#include "tool/tables.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

std::string shown(const ordered_json& fault, const char* key) {
  const ordered_json value = fault.value(key, ordered_json());
  return value.is_null() ? "-" : value.is_string() ? value.get<std::string>() : value.dump();
}

std::string kinds_of(const ordered_json& fault) {
  std::string kinds;
  for (const ordered_json& kind : fault.at("kinds")) {
    kinds += (kinds.empty() ? "" : " ") + kind.get<std::string>();
  }
  return kinds;
}

int run(const Arguments& arguments) {
  Connection connection(arguments);
  if (arguments.has("clear")) {
    const ordered_json answer = connection.send("DELETE", "/v1/faults", nullptr);
    if (arguments.has("json")) {
      print_json(answer);
    } else {
      print("disarmed: " + answer.at("disarmed").dump() + "\n");
    }
    return 0;
  }
  const ordered_json faults = connection.rows("/v1/faults", "faults");
  if (arguments.has("json")) {
    print_json(faults);
    return 0;
  }
  Table table({"POINT", "ARMED", "CALLS", "HITS", "KINDS"});
  for (const ordered_json& fault : faults) {
    table.add({fault.at("point"), shown(fault, "armed"), shown(fault, "calls"), shown(fault, "hits"), kinds_of(fault)});
  }
  print(table.text());
  return 0;
}

}  // namespace

Command faults_command() {
  return {"faults",
          "Values",
          "List the points where calls can be made to fail, or disarm all",
          {unit_option(), {"clear", 0, "", "disarm all faults"}, json_option()},
          {},
          run};
}

}  // namespace tool
