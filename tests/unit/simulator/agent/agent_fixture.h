#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "simulator/agent/link.h"
#include "simulator/sysroot/bwrap_command.h"

namespace agent_test {

using simulator::agent::Json;

/// Timeout: far longer than any step takes; only a failing test waits so long.
inline constexpr std::chrono::milliseconds PATIENCE{20000};

/// A real agent, first process of a real private root, and the service's end of its channel. One thread.
class RealAgent {
public:
  explicit RealAgent(const simulator::sysroot::RootOptions& options = default_options());
  ~RealAgent();
  RealAgent(const RealAgent&) = delete;
  RealAgent& operator=(const RealAgent&) = delete;

  static simulator::sysroot::RootOptions default_options();
  /// The orders of a unit without services, network and host.
  static Json plain_orders();

  /// Sets the unit up and waits for the notice "ready" or "failed", which it returns.
  Json set_up(const Json& orders = plain_orders());

  /// Sends a request and waits for its answer: "ok" or "error".
  Json request(const std::string& verb, const Json& with = Json::object());
  /// Sends a request without waiting; returns its id.
  int begin(const std::string& verb, const Json& with = Json::object());
  /// Waits for the answer of that request.
  Json answer(int id);
  /// Waits for the next notice of that kind.
  Json notice(const std::string& kind);

  /// Runs a command to its end and returns {"status" or "signal" or "error", "out", "err"}.
  Json run(const std::vector<std::string>& words, const Json& more = Json::object());
  /// Sends bytes to a command's standard input.
  void input(std::uint32_t stream, const std::string& bytes);
  /// What has arrived on a stream.
  const std::string& bytes(std::uint32_t stream) { return bytes_[stream]; }
  /// Waits until a stream holds the text.
  bool shows(std::uint32_t stream, const std::string& text);

  void send_raw(const std::string& bytes);
  /// Closes the channel.
  void hang_up();
  /// Waits until the private root has ended; returns its exit status.
  int wait();
  pid_t process() const { return process_; }

private:
  bool take(std::chrono::milliseconds limit);

  int channel_ = -1;
  pid_t process_ = -1;
  simulator::channel::FrameReader reader_{simulator::channel::LARGEST_FROM_AGENT};
  int last_id_ = 0;
  std::map<int, Json> answers_;
  std::vector<Json> notices_;
  std::map<std::uint32_t, std::string> bytes_;
};

}  // namespace agent_test
