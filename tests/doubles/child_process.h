#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace doubles {

/// A program run as a child, killed at the latest by the destructor or with the thread that has started it.
class ChildProcess {
public:
  /// Starts it with these variables added to the environment; what it writes to both streams goes to the file
  /// `output`. Throws std::system_error.
  ChildProcess(const std::vector<std::string>& arguments, const std::vector<std::string>& variables,
               const std::string& output);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  pid_t id() const { return id_; }
  /// Does nothing once the end has been noticed.
  void send(int signal) const;
  /// Waits for the end; returns the exit status, or minus the signal that ended it.
  int wait();
  bool running();

private:
  pid_t id_ = 0;
  int status_ = 0;
};

}  // namespace doubles
