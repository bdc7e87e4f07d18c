#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <vector>

#include "simulator/agent/commands.h"
#include "simulator/agent/host_process.h"
#include "simulator/agent/link.h"
#include "simulator/agent/set_up.h"
#include "simulator/agent/verbs.h"

namespace simulator::agent {

/// The unit's first process: sets the unit up as ordered, answers the control service's requests, streams the output of
/// commands and logs, reaps every orphan of the unit. The process ends with the service.
///
/// The main thread runs an event loop and starts all processes; the set-up and each request run on threads of their
/// own, so that a request that blocks holds up no other.
class Agent {
public:
  /// `channel`: the socket to the service.
  explicit Agent(int channel);
  Agent(const Agent&) = delete;
  Agent& operator=(const Agent&) = delete;

  /// Serves until the service closes the channel or orders the end. Throws channel::FrameError if the service breaks
  /// the protocol.
  void run();

private:
  void take(const channel::Frame& frame);
  void take_document(const std::string& text);
  void begin_set_up(const Json& with);
  void set_up(const Orders& orders);
  void finish_set_up();
  void answer_on_thread(const Json& request);
  void add_answer(Json answer);
  std::vector<Json> take_answers();
  CommandLine command_in(const Arguments& with) const;
  void start_command(const Json& id, const Arguments& with);
  void send_ui_done(const Json& id);
  Json control_command(const Arguments& with);
  void reap();

  Link link_;
  Commands commands_;
  HostProcess host_;
  Verbs verbs_;
  int children_;
  int wake_up_;
  std::optional<Orders> orders_;
  std::atomic<bool> is_set_up_{false};
  bool reaps_ = false;
  bool ends_ = false;
  std::atomic<int> requests_{0};
  std::mutex answers_mutex_;
  std::vector<Json> answers_;  ///< of requests answered on threads of their own, to be sent
};

}  // namespace simulator::agent
