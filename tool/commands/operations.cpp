#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/output.h"
#include "tool/tables.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

std::string arguments_of(const ordered_json& operation) {
  std::string text;
  for (const ordered_json& each : operation.at("args")) {
    text += (text.empty() ? "" : " ") + (each.is_string() ? each.get<std::string>() : each.dump());
  }
  return text;
}

int run(const Arguments& arguments) {
  Connection connection(arguments);
  const ordered_json operations = connection.rows("/v1/operations", "operations");
  if (arguments.has("json")) {
    print_json(operations);
    return 0;
  }
  Table table({"OPERATION", "ARGUMENTS"});
  for (const ordered_json& operation : operations) {
    table.add({operation.at("call"), arguments_of(operation)});
  }
  print(table.text());
  return 0;
}

}  // namespace

Command operations_command() {
  return {"operations",
          "Hardware object",
          "List the operations of the hardware object and their arguments",
          {unit_option(), json_option()},
          {},
          run};
}

}  // namespace tool
