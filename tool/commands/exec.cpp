#include <unistd.h>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/exec_session.h"
#include "tool/terminal.h"

namespace tool {
namespace {

int run(const Arguments& arguments) {
  if (arguments.has("terminal") && isatty(STDIN_FILENO) != 1) {
    throw UsageError("--terminal: standard input is not a terminal");
  }
  UnitCommand command;
  command.argv = arguments.all("COMMAND");
  command.environment = given_environment(arguments);
  command.terminal = arguments.has("terminal") || (!arguments.has("no-terminal") && has_terminal());
  return run_on_unit(Connection(arguments).socket(), command);
}

}  // namespace

Command exec_command() {
  return {"exec",
          "Units",
          "Run a command on a running unit and exit with its status",
          {unit_option(),
           environment_option(),
           {"interactive", 'i', "", "pass standard input on (always done)"},
           {"terminal", 't', "", "give the command a terminal (default: if standard input and output are one)"},
           {"no-terminal", 'T', "", "give it none"}},
          {{"COMMAND", "command and its arguments", Count::SOME}},
          run,
          true};
}

}  // namespace tool
