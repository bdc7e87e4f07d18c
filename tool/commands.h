#pragma once

#include <string>
#include <vector>

#include "tool/running_unit.h"
#include "tool/started_unit.h"

namespace tool {

/// The subcommands. Each runs to its end; it ends with status 0 by returning, else with CommandEnd or CommandError, or
/// with what a bad unit file or state folder throws. Main thread only.

/// "run": a fresh unit, its state shown.
struct RunOptions {
  UnitChoice unit;
  bool once = false;  ///< shown once; else once a second until a signal
  bool json = false;
};
void run(const RunOptions& options);

/// "exec": a command on a fresh unit, without a host.
struct ExecOptions {
  UnitChoice unit;
  bool services = false;
  bool network = false;
  std::vector<std::string> environment;  ///< "NAME=VALUE"
  std::vector<std::string> command;      ///< at least one word
};
/// Returns the command's exit status.
int exec(const ExecOptions& options);

/// "shutdown": presses the power switch, has the question answered from standard input, prints what was called.
struct ShutdownOptions {
  RunningUnit running;
  UnitChoice unit;
  bool on_running = false;  ///< `running` is used; else a fresh `unit`
  bool json = false;
};
void shut_down(const ShutdownOptions& options);

/// "get", "set" and "list".
struct SettingOptions {
  RunningUnit unit;
  std::string key;
  std::string value;
  bool json = false;
};
void get_setting(const SettingOptions& options);
void set_setting(const SettingOptions& options);
void list_settings(const SettingOptions& options);

/// "call" and "interrupt".
struct RequestOptions {
  RunningUnit unit;
  std::string operation;
  std::vector<std::string> arguments;
  std::string value;
  bool json = false;
};
void call_operation(const RequestOptions& options);
void raise_interrupt(const RequestOptions& options);

/// "dialogs" and "answer".
struct DialogOptions {
  RunningUnit unit;
  std::string title;
  std::string label;
  bool json = false;
};
void show_dialogs(const DialogOptions& options);
void answer_dialog(const DialogOptions& options);

}  // namespace tool
