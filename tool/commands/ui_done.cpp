#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/output.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  const nlohmann::ordered_json answer = Connection(arguments).send("POST", "/v1/ui-done", nlohmann::json::object());
  if (arguments.has("json")) {
    print_json(answer);
  }
  return 0;
}

}  // namespace

Command ui_done_command() {
  return {"ui-done",
          "Switches and screen",
          "Publish that the user interface has loaded",
          {unit_option(), json_option()},
          {},
          run};
}

}  // namespace tool
