#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulator::process {

/// How a child starts. By default it gets default signal handling and the starter's standard streams; descriptors
/// without close-on-exec are inherited.
struct ChildOptions {
  std::vector<std::pair<int, int>> descriptors;  ///< each first one becomes the child's second one
  std::string log;                 ///< file for standard output and error, appended to; input is then empty
  bool keeps_signal_mask = false;  ///< signals blocked by the starter stay blocked
  bool own_session = false;        ///< the terminal's signals do not reach it
  bool dies_with_starter = false;  ///< killed when the starting thread ends
  int terminal = -1;               ///< terminal that controls the child; implies own_session
  std::string directory;           ///< its working directory; empty: the starter's
  /// Variables set or replaced in its environment.
  std::vector<std::pair<std::string, std::string>> environment;
  /// Start-up errors are thrown by the starter instead of printed by the child.
  bool throws_if_not_started = false;
};

/// Starts a program, found in PATH. If the program cannot be started, the child prints an error and exits with 127, or
/// std::system_error is thrown, as the options choose. Throws std::system_error if no process can be created or the log
/// cannot be opened. Any thread.
pid_t start_program(const std::vector<std::string>& line, const ChildOptions& options = {});

/// Replaces this process by the program; exits with 127 if it cannot be started.
[[noreturn]] void become_program(const std::vector<std::string>& line, const ChildOptions& options = {});

/// Runs a program, waits for it and returns its exit status. `input`: its standard input.
int run_program(const std::vector<std::string>& line, const std::string& input = {});

/// The wait status of a child that has exited; none while it runs. `wait`: blocks until it exits.
std::optional<int> reap(pid_t child, bool wait);

/// The exit status of a wait status as a shell reports it: 128 + number if killed by a signal.
int shell_status(int wait_status);

}  // namespace simulator::process
