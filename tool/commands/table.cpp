#include "tool/commands/table.h"

#include "tool/errors.h"
#include "tool/nearest.h"
#include "tool/text.h"

namespace tool {

const std::vector<Command>& commands() {
  static const std::vector<Command> all = {
      run_command(),        ps_command(),     status_command(),  stop_command(),     logs_command(),
      wait_command(),       exec_command(),   cp_command(),      settings_command(), get_command(),
      set_command(),        watch_command(),  faults_command(),  peek_command(),     poke_command(),
      operations_command(), call_command(),   press_command(),   cover_command(),    interrupt_command(),
      dialogs_command(),    answer_command(), ui_done_command(), shutdown_command(), debug_command(),
      env_command(),        pid_command(),    help_command(),    complete_command()};
  return all;
}

const Command& find_command(const std::string& name) {
  std::vector<std::string> names;
  for (const Command& command : commands()) {
    if (command.name == name) {
      return command;
    }
    if (!command.group.empty()) {
      names.push_back(command.name);
    }
  }
  const std::string meant = did_you_mean(name, names);
  throw UsageError("unknown command \"" + printable(clipped(name, 40)) + "\"" +
                   (meant.empty() ? "; \"unit --help\" lists all" : meant));
}

}  // namespace tool
