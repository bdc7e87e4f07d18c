#include <cstdio>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/numbers.h"
#include "tool/output.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  const std::int64_t space = number_in("SPACE", arguments.text("SPACE"), 0, UINT32_MAX);
  const std::int64_t address = number_in("ADDRESS", arguments.text("ADDRESS"), 0, UINT32_MAX);
  const nlohmann::ordered_json answer =
      Connection(arguments).get("/v1/registers/" + std::to_string(space) + "/" + std::to_string(address));
  if (arguments.has("json")) {
    print_json(answer);
    return 0;
  }
  const auto value = answer.at("value").get<std::uint32_t>();
  char text[40];
  std::snprintf(text, sizeof text, "0x%08x (%u)\n", value, value);
  print(text);
  return 0;
}

}  // namespace

Command peek_command() {
  return {"peek",
          "Values",
          "Print a board register",
          {unit_option(), json_option()},
          {{"SPACE", "address space, decimal or 0x…"}, {"ADDRESS", "register, decimal or 0x…"}},
          run};
}

}  // namespace tool
