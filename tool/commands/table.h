#pragma once

#include <string>
#include <vector>

#include "tool/command.h"

namespace tool {

/// Every command of the program, in the order of the overview.
const std::vector<Command>& commands();
/// The command of that name. Throws UsageError with the nearest names.
const Command& find_command(const std::string& name);

/// One function per command, each in a file of its own.
Command answer_command();
Command call_command();
Command complete_command();
Command cover_command();
Command cp_command();
Command debug_command();
Command dialogs_command();
Command env_command();
Command exec_command();
Command faults_command();
Command get_command();
Command help_command();
Command interrupt_command();
Command logs_command();
Command operations_command();
Command peek_command();
Command pid_command();
Command poke_command();
Command press_command();
Command ps_command();
Command run_command();
Command set_command();
Command settings_command();
Command shutdown_command();
Command status_command();
Command stop_command();
Command ui_done_command();
Command wait_command();
Command watch_command();

}  // namespace tool
