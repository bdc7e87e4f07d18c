#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>

#include "simulator/model/services.h"

namespace simulator::services {

/// The process of one service, for its parent. One thread.
class Child {
public:
  explicit Child(model::Service service) : service_(service) {}

  model::Service service() const { return service_; }
  bool alive() const { return process_ > 0; }
  bool ever_started() const { return started_; }

  /// Starts the service in a new process. Signals blocked by the caller stay blocked there until the service is ready
  /// for them. Throws std::system_error.
  void start();

  /// Readable when the service has reported or died; -1 while it is dead.
  int report() const { return report_; }
  /// Reads the pending reports. Returns the wait status of a dead service, none while it is alive.
  std::optional<int> take_reports();
  /// The count of behaviour changes last reported by the service, none before its first report.
  std::optional<std::uint32_t> applied() const { return applied_; }

  /// Whether the wait status is that of a killed service, as its behaviour may require.
  static bool was_killed(int status);

  void ask_to_end() const;
  /// Waits for the service to exit and kills it at `deadline`. Returns whether it exited with status 0 or had been
  /// killed before.
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
