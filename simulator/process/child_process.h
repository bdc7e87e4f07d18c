#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulator::process {

/// How a child starts. By default it has the usual signal handling and the starter's standard streams; descriptors that
/// are not close-on-exec are passed on.
struct ChildOptions {
  std::vector<std::pair<int, int>> descriptors;  ///< each first one becomes the child's second one
  std::string log;                               ///< file that standard output and error are appended to; no input then
  bool keeps_signal_mask = false;                ///< what the starter blocks stays blocked
  bool own_session = false;                      ///< the terminal's signals do not reach it
  bool dies_with_starter = false;                ///< killed when the thread that started it ends
};

/// Starts a program, found in PATH. A program that cannot be started says so on standard error and exits with 127.
/// Throws std::system_error if no process can be created or the log cannot be opened. Any thread.
pid_t start_program(const std::vector<std::string>& line, const ChildOptions& options = {});

/// Becomes that program; exits with 127 if it cannot be started.
[[noreturn]] void become_program(const std::vector<std::string>& line, const ChildOptions& options = {});

/// Runs a program to its end and returns its exit status. `input` is what it reads.
int run_program(const std::vector<std::string>& line, const std::string& input = {});

/// The wait status of a child that has ended; none while it runs. `wait`: returns when it has ended.
std::optional<int> reap(pid_t child, bool wait);

/// An exit status as a shell gives it, 128 + number if killed by a signal, from a wait status.
int shell_status(int wait_status);

}  // namespace simulator::process
