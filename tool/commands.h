#pragma once

#include <CLI/CLI.hpp>

namespace tool {

/// Each adds one subcommand, or a few that belong together, to the command. A subcommand chosen on the command line
/// runs while the line is parsed; it ends with CommandEnd, CommandError, or normally for status 0.
void add_run(CLI::App& app);
void add_exec(CLI::App& app);
void add_settings(CLI::App& app);  ///< get, set, list
void add_requests(CLI::App& app);  ///< call, interrupt
void add_dialogs(CLI::App& app);   ///< dialogs, answer
void add_shutdown(CLI::App& app);

}  // namespace tool
