#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "control/service/agent_link.h"
#include "control/service/event_stream.h"

namespace control::service {

/// The types of events, besides `hello`.
const std::vector<std::string>& event_types();

/// Tells the clients of the event stream what happens. Asks the agent for settings, dialogs and the event log only
/// while a client wants them. The service's thread.
class EventHub {
public:
  using Begin = std::function<void(const std::optional<RequestError>& error, const nlohmann::json& settings)>;

  EventHub(boost::asio::io_context& context, AgentLink& agent, const Limits& limits, Metrics& metrics);

  /// Asks the agent for the watched settings and the place in the event log; then calls `begin`, which may add a
  /// stream. Throws RequestError.
  void prepare(const Interest& interest, const Begin& begin);
  /// Adds a client. `settings`: of prepare().
  void add(const std::shared_ptr<EventStream>& stream, const nlohmann::json& settings);

  void publish(const std::string& type, const nlohmann::ordered_json& data);
  /// Whether a client wants events of this type.
  bool wanted(const std::string& type);
  /// The dialogs have changed.
  void refresh_dialogs();

private:
  using Streams = std::vector<std::shared_ptr<EventStream>>;

  Streams listening(const std::string& type);
  void catch_up(const std::function<void()>& done);
  void poll_settings();
  void poll_eventlog();
  void later(boost::asio::steady_timer& timer, std::chrono::milliseconds time, void (EventHub::*poll)());

  AgentLink& agent_;
  const Limits& limits_;
  Metrics& metrics_;
  std::vector<std::weak_ptr<EventStream>> streams_;
  boost::asio::steady_timer settings_timer_;
  boost::asio::steady_timer eventlog_timer_;
  bool polls_settings_ = false;
  bool polls_eventlog_ = false;
  bool asks_dialogs_ = false;
  bool dialogs_changed_ = false;  ///< while they are asked for
  std::optional<std::uint64_t> next_event_;
};

}  // namespace control::service
