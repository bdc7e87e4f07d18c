#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "control/service/raw_connection.h"

namespace control::service {

/// What a client of the event stream asked for.
struct Interest {
  std::set<std::string> events;       ///< types
  std::vector<std::string> settings;  ///< watched
};

/// A client of the event stream: server-sent events in a chunked body. It is cut off once Limits::stream bytes wait.
class EventStream final : public RawConnection {
public:
  EventStream(Socket socket, Clients& clients, const Limits& limits, Interest interest);
  ~EventStream() override;

  /// Sends the header, then the events.
  void begin();
  /// Sends an event, if the client asked for its type. `data`: JSON, one line.
  void event(const std::string& type, const std::string& data);
  void end() override;

  const Interest& interest() const { return interest_; }
  bool wants(const std::string& type) const { return interest_.events.count(type) != 0; }
  bool listening() const { return open(); }

  /// Values of the watched settings that this client knows.
  nlohmann::json known = nlohmann::json::object();

private:
  void chunk(const std::string& text);
  void comment_later();

  Interest interest_;
  boost::asio::steady_timer comment_timer_;
};

}  // namespace control::service
