#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>

#include "simulator/model/services.h"

namespace simulator::services {

/// The process of one service, as its parent sees it. One thread.
class Child {
public:
  explicit Child(model::Service service) : service_(service) {}

  model::Service service() const { return service_; }
  bool alive() const { return process_ > 0; }
  bool ever_started() const { return started_; }

  /// Starts the service in a new process. The signals that the caller blocks are blocked there until the service is
  /// ready for them. Throws std::system_error.
  void start();

  /// Readable when the service has something to report or has died; -1 while it is dead.
  int report() const { return report_; }
  /// Takes the reports that are there. Returns the wait status of a service that has died, none while it is alive.
  std::optional<int> take_reports();
  /// The count of behaviour changes that the service has last reported, none before its first report.
  std::optional<std::uint32_t> applied() const { return applied_; }

  /// True for the wait status of a service that has been killed, as its behaviour may have it.
  static bool was_killed(int status);

  void ask_to_end() const;
  /// Waits for the end, and kills the service when it has not come by `deadline`. Returns whether it has ended with
  /// exit status 0 or had been killed before.
  bool await_end(std::chrono::steady_clock::time_point deadline);

private:
  int reap();

  model::Service service_;
  pid_t process_ = 0;
  int report_ = -1;
  std::optional<std::uint32_t> applied_;
  bool started_ = false;
};

}  // namespace simulator::services
