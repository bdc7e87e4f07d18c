#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "simulator/process/child_process.h"

namespace doubles {

/// A program run as a child process, killed by the destructor or when the thread that started it ends. If it cannot be
/// started, it exits with 127.
class ChildProcess {
public:
  /// Throws std::system_error.
  explicit ChildProcess(const std::vector<std::string>& line, simulator::process::ChildOptions options = {});
  /// Starts it with these variables ("NAME=value") added to the environment; both its output streams go to the file
  /// `output`. Throws std::system_error.
  ChildProcess(const std::vector<std::string>& line, const std::vector<std::string>& variables,
               const std::string& output);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t id() const { return id_; }
  /// Does nothing once the child's exit has been seen.
  void send(int signal) const;
  /// Waits until it exits; returns the exit status, or the negative number of the signal that killed it.
  int wait();
  bool running();

private:
  void reap(bool wait);

  pid_t id_ = 0;
  int status_ = 0;
};

}  // namespace doubles
