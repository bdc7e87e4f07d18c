#pragma once

#include <boost/asio/generic/stream_protocol.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "control/service/limits.h"
#include "control/service/metrics.h"
#include "control/service/request_error.h"
#include "simulator/channel/frames.h"

namespace control::service {

/// The agent's answer to one request, or why there is none.
struct Reply {
  std::optional<RequestError> error;
  nlohmann::json ok;  ///< an object, unless there is an error
  std::string text;   ///< `ok` as the agent wrote it
};

/// Told of what the agent does unasked.
class AgentListener {
public:
  virtual ~AgentListener() = default;
  virtual void on_notice(const std::string& name, const nlohmann::json& notice) = 0;
  /// The link is closed. `failed`: the agent broke the protocol. Called once.
  virtual void on_agent_end(const std::string& reason, bool failed) = 0;
};

/// The service's end of the channel to the agent. Trusts nothing that it receives: everything is bounded, and whatever
/// breaks the protocol ends the link. The service's thread.
class AgentLink {
public:
  using OnReply = std::function<void(const Reply&)>;
  using OnBytes = std::function<void(std::string_view)>;

  /// `descriptor`: a connected stream socket, from now on the link's.
  AgentLink(boost::asio::io_context& context, int descriptor, const Limits& limits, Metrics& metrics,
            AgentListener& listener);
  void start();

  /// Sends a request. `on_reply` is called once, later: with the answer, or with an error if the limit passes (504) or
  /// the link ends (503). Throws RequestError: 413 if the request is too large, 503 if too many wait or the link ended.
  void request(const std::string& verb, const nlohmann::json& with, std::optional<std::chrono::milliseconds> limit,
               OnReply on_reply);
  /// Sends bytes on a stream; does nothing once the link has ended.
  void send_bytes(std::uint32_t stream, std::string_view bytes);
  /// Bytes that the agent has not taken yet.
  std::size_t backlog() const { return backlog_; }

  /// Has the bytes of a stream delivered. Bytes of other streams are dropped.
  void listen(std::uint32_t stream, OnBytes on_bytes) { listeners_[stream] = std::move(on_bytes); }
  void forget(std::uint32_t stream) { listeners_.erase(stream); }

  /// Ends the link because of what the agent sent or did.
  void fail(const std::string& reason) { end(reason, true); }
  bool ended() const { return ended_; }
  void close() { end("closed", false); }

private:
  struct Pending {
    OnReply on_reply;
    std::unique_ptr<boost::asio::steady_timer> timer;
  };

  void read();
  void take(simulator::channel::Frame frame);
  void take_document(const std::string& text);
  void take_answer(const nlohmann::json& document, const std::string& text);
  void count_notice();
  void answer(std::uint64_t id, const Reply& reply);
  void send(std::string frame);
  void write();
  void end(const std::string& reason, bool failed);

  boost::asio::io_context& context_;
  boost::asio::generic::stream_protocol::socket socket_;
  const Limits& limits_;
  Metrics& metrics_;
  AgentListener& listener_;
  simulator::channel::FrameReader reader_{simulator::channel::LARGEST_FROM_AGENT};
  std::vector<char> block_ = std::vector<char>(64 << 10);
  std::deque<std::string> outgoing_;
  std::size_t backlog_ = 0;
  std::uint64_t last_id_ = 0;
  std::map<std::uint64_t, Pending> pending_;
  std::map<std::uint32_t, OnBytes> listeners_;
  std::chrono::steady_clock::time_point second_{};  ///< start of the second in which notices are counted
  unsigned notices_ = 0;
  bool deaf_ = false;  ///< the agent reads no more
  bool ended_ = false;
};

}  // namespace control::service
