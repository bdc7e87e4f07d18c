#pragma once

#include <sys/types.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/agent/commands.h"

namespace simulator::agent {

/// The unit's host as the agent started it. state(): any thread; the rest: the agent's main thread.
class HostProcess {
public:
  HostProcess(Commands& commands, Link& link) : commands_(commands), link_(link) {}
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;

  /// Starts the host. `settled` is called once: when it serves requests (without `serves`: when it has been started) or
  /// has exited.
  void start(const std::vector<std::string>& line, bool serves, std::function<void()> settled);
  /// Looks whether a starting host serves requests. Returns the time in milliseconds after which to look again, -1: not
  /// needed.
  int look();

  /// {"state":"none|starting|running|exited","pid":…,"status":…,"signal":…}, null where there is no value.
  Json state() const;

private:
  void change(const char* state);
  void note_end(const CommandEnd& end);
  void settle();

  Commands& commands_;
  Link& link_;
  std::function<void()> settled_;
  mutable std::mutex mutex_;
  std::string state_ = "none";
  pid_t process_ = -1;
  CommandEnd end_;
};

}  // namespace simulator::agent
