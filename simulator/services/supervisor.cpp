#include "simulator/services/supervisor.h"

#include <poll.h>
#include <signal.h>
#include <time.h>

#include <algorithm>
#include <vector>

#include "simulator/services/child.h"

namespace simulator::services {
namespace {

using model::Service;
using model::ServiceBehaviour;

constexpr std::chrono::seconds ENDING_GRACE{3};

/// Interval for checking the behaviour of a dead service.
constexpr timespec LOOK_UP_INTERVAL{0, 10'000'000};

volatile sig_atomic_t end_asked = 0;

extern "C" void note_end(int) {
  end_asked = 1;
}

/// Blocks the termination signals, so that they are delivered only while the supervisor sleeps. Returns the previous
/// mask.
sigset_t block_ending_signals() {
  struct sigaction action = {};
  action.sa_handler = note_end;
  ::sigaction(SIGTERM, &action, nullptr);
  ::sigaction(SIGINT, &action, nullptr);
  sigset_t ending, before;
  ::sigemptyset(&ending);
  ::sigaddset(&ending, SIGTERM);
  ::sigaddset(&ending, SIGINT);
  ::sigprocmask(SIG_BLOCK, &ending, &before);
  return before;
}

class Supervisor {
public:
  Supervisor(model::Services& services, const sigset_t& awake_signals)
      : services_(services), awake_signals_(awake_signals) {
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(Service::COUNT); ++i) {
      children_.emplace_back(static_cast<Service>(i));
    }
  }

  int run() {
    bool well = true;
    while (well && end_asked == 0) {
      start_what_is_wanted();
      sleep();
      well = take_reports();
    }
    return end_all() && well ? 0 : 1;
  }

private:
  /// Starts the services that should run and do not, and updates the applied count in the model.
  void start_what_is_wanted() {
    std::optional<std::uint32_t> applied = services_.changed().count();
    for (Child& child : children_) {
      const bool stays_dead = services_.behaviour(child.service()) == ServiceBehaviour::DIES_IN_CALL;
      if (!child.alive() && (!child.ever_started() || !stays_dead)) {
        child.start();
      }
      if (child.alive()) {
        applied = std::min(applied, child.applied());
      }
    }
    if (applied) {
      services_.mark_applied(*applied);
    }
  }

  /// Sleeps until a service reports or dies, a termination signal arrives, or dead services need checking.
  void sleep() {
    std::vector<pollfd> reports;
    bool all_alive = true;
    for (const Child& child : children_) {
      reports.push_back({child.report(), POLLIN, 0});
      all_alive = all_alive && child.alive();
    }
    ::ppoll(reports.data(), reports.size(), all_alive ? nullptr : &LOOK_UP_INTERVAL, &awake_signals_);
  }

  /// Returns false if a service has failed.
  bool take_reports() {
    for (Child& child : children_) {
      const std::optional<int> status = child.alive() ? child.take_reports() : std::nullopt;
      if (status && *status != 0 && !Child::was_killed(*status)) {
        return false;
      }
    }
    return true;
  }

  /// Returns false if a service did not exit cleanly.
  bool end_all() {
    const auto deadline = std::chrono::steady_clock::now() + ENDING_GRACE;
    for (const Child& child : children_) {
      child.ask_to_end();
    }
    bool in_order = true;
    for (Child& child : children_) {
      in_order = child.await_end(deadline) && in_order;
    }
    return in_order;
  }

  model::Services& services_;
  sigset_t awake_signals_;
  std::vector<Child> children_;
};

}  // namespace

int supervise(model::UnitModel& model) {
  const sigset_t awake_signals = block_ending_signals();
  return Supervisor(model.services(), awake_signals).run();
}

}  // namespace simulator::services
