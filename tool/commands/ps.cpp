#include "tool/arguments.h"
#include "tool/commands/table.h"
#include "tool/commands/unit_text.h"
#include "tool/output.h"
#include "tool/tables.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

int run(const Arguments& arguments) {
  ordered_json units = ordered_json::array();
  for (const control::client::FoundUnit& unit : control::client::list_units()) {
    units.push_back(described(unit));
  }
  if (arguments.has("json")) {
    print_json(units);
    return 0;
  }
  Table table({"NAME", "STATE", "HOST", "STARTED", "PID"});
  for (const ordered_json& unit : units) {
    table.add({unit.at("name"), unit.value("state", ""), host_in_words(unit), unit.value("started_at", "-"),
               unit.at("process").at("supervisor").dump()});
  }
  print(table.text());
  return 0;
}

}  // namespace

Command ps_command() {
  return {"ps", "Units", "List the running units", {json_option()}, {}, run};
}

}  // namespace tool
