#include "tool/arguments.h"
#include "tool/commands/table.h"
#include "tool/output.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  const auto name = arguments.value("COMMAND");
  print(name ? help_of(find_command(*name)) : overview(commands()));
  return 0;
}

}  // namespace

Command help_command() {
  return {
      "help", "Help", "Print the help of a command", {}, {{"COMMAND", "command", Count::AT_MOST_ONE, Offer::COMMANDS}},
      run};
}

}  // namespace tool
