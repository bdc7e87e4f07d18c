#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace simulator::sysroot {

/// Where a child's standard output and error go.
struct ChildStreams {
  std::string log;  ///< file that both are appended to; empty: as this process's
};

/// Starts a program with the usual signal handling and no descriptors but the standard ones and what is not marked
/// close-on-exec. A program that cannot be started ends with status 127. Throws std::system_error where no process can
/// be made.
pid_t start_program(const std::vector<std::string>& line, const ChildStreams& streams = {});

/// Becomes that program. Returns never; ends the process with status 127 where the program cannot be started.
[[noreturn]] void become_program(const std::vector<std::string>& line, const ChildStreams& streams = {});

/// Runs a program to its end and returns its exit status, 128 + number where a signal ended it. `input` is what it
/// reads.
int run_program(const std::vector<std::string>& line, const std::string& input = {});

/// An exit status as a shell gives it, from what waitpid() tells.
int shell_status(int wait_status);

}  // namespace simulator::sysroot
