#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "control/supervisor/launch.h"
#include "control/supervisor/unit_folder.h"

namespace control::supervisor {

/// Reports the outcome of a launch to the starting command: one line of JSON. Nothing is reported twice.
class Report {
public:
  /// `descriptor`: where the line goes; -1: nowhere.
  explicit Report(int descriptor) : descriptor_(descriptor) {}

  void ready(const UnitFolder& folder, pid_t supervisor);
  void error(const std::string& what, int status);
  bool done() const noexcept { return descriptor_ == -1; }

private:
  void send(const nlohmann::ordered_json& document);

  int descriptor_;
};

/// Runs one unit: its private root and its control service, each a child of this process, and ends the one when the
/// other has ended. Of the caller's descriptors the unit gets none. Main thread only; the process has no other threads.
class Supervisor {
public:
  /// `lifeline`: descriptor whose end of file stops the unit; -1: none. Throws LaunchError.
  Supervisor(const Launch& launch, Report report, int lifeline);
  ~Supervisor();
  Supervisor(const Supervisor&) = delete;
  Supervisor& operator=(const Supervisor&) = delete;

  /// Returns when the unit has ended; everything of it has then ended.
  void run();

private:
  void start_root();
  void start_service();
  [[noreturn]] void serve(int listening, pid_t supervisor);
  void order_set_up() const;
  void take_signals();
  void take_root_output();
  void stop();
  void reap();
  void wait_for_root();
  void kill_orphans();
  void tell_failure(const std::string& what) const;
  std::string failure();
  nlohmann::ordered_json facts(pid_t supervisor) const;

  Launch launch_;
  Report report_;
  int lifeline_;
  UnitFolder folder_;
  std::string started_at_;
  int signals_ = -1;
  int agent_ = -1;        ///< our end of the channel, until the service has it
  int root_output_ = -1;  ///< what the root and the agent write to standard error
  int failure_[2] = {-1, -1};  ///< through which the service tells why the unit could not be set up
  std::string last_output_;
  pid_t root_ = -1;
  pid_t service_ = -1;
};

}  // namespace control::supervisor
