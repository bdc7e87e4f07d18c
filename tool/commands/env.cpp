#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/exec_session.h"
#include "tool/output.h"
#include "tool/text.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  UnitCommand command;
  command.argv = {"env", "-0"};
  command.input = false;
  std::string text;
  const int status = pipe_through_unit(Connection(arguments).socket(), command, {},
                                       [&text](std::string_view bytes) { text += bytes; });
  nlohmann::ordered_json variables = nlohmann::ordered_json::object();
  for (std::size_t at = 0, end = 0; (end = text.find('\0', at)) != std::string::npos; at = end + 1) {
    const std::string variable = text.substr(at, end - at);
    const std::size_t sign = variable.find('=');
    if (arguments.has("json")) {
      variables[variable.substr(0, sign)] = sign == std::string::npos ? "" : variable.substr(sign + 1);
    } else {
      print(printable(variable) + '\n');
    }
  }
  if (arguments.has("json")) {
    print_json(variables);
  }
  return status;
}

}  // namespace

Command env_command() {
  return {"env", "Debugging", "Print the environment of programs on a unit", {unit_option(), json_option()}, {}, run};
}

}  // namespace tool
