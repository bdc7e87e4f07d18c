#pragma once

#include <string>
#include <vector>

#include "tool/running_unit.h"
#include "tool/started_unit.h"

namespace tool {

/// The subcommands. Each runs to completion. Returning means status 0; failures are thrown as CommandEnd, CommandError,
/// UnitFileError or StateFolderError. Main thread only.

/// "run": starts a new unit and shows its state.
struct RunOptions {
  UnitChoice unit;
  bool once = false;  ///< once; otherwise every second until a signal
  bool json = false;
};
void run(const RunOptions& options);

/// "exec": runs a command on a new unit without a host.
struct ExecOptions {
  UnitChoice unit;
  bool services = false;
  bool network = false;
  std::vector<std::string> environment;  ///< "NAME=VALUE"
  std::vector<std::string> command;      ///< at least one word
};
/// Returns the command's exit status.
int exec(const ExecOptions& options);

/// "shutdown": presses the power switch, reads the answer from standard input, prints the recorded calls.
struct ShutdownOptions {
  RunningUnit running;
  UnitChoice unit;
  bool on_running = false;  ///< use `running`; otherwise a new `unit`
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
