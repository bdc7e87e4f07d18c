#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/numbers.h"
#include "tool/output.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  const std::int64_t space = number_in("SPACE", arguments.text("SPACE"), 0, UINT32_MAX);
  const std::int64_t address = number_in("ADDRESS", arguments.text("ADDRESS"), 0, UINT32_MAX);
  const std::int64_t value = number_in("VALUE", arguments.text("VALUE"), 0, UINT32_MAX);
  const nlohmann::ordered_json answer = Connection(arguments).send(
      "PUT", "/v1/registers/" + std::to_string(space) + "/" + std::to_string(address), {{"value", value}});
  if (arguments.has("json")) {
    print_json(answer);
  }
  return 0;
}

}  // namespace

Command poke_command() {
  return {"poke",
          "Values",
          "Change a board register",
          {unit_option(), json_option()},
          {{"SPACE", "address space, decimal or 0x…"},
           {"ADDRESS", "register, decimal or 0x…"},
           {"VALUE", "unsigned 32-bit integer, decimal or 0x…"}},
          run};
}

}  // namespace tool
