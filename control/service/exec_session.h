#pragma once

#include <cstdint>
#include <deque>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "control/service/agent_link.h"
#include "control/service/raw_connection.h"
#include "control/wire/exec_frames.h"

namespace control::service {

/// A client and its command: passes input, output and control between them. The command gets no more credit than its
/// client takes; a client that goes away abandons its command. The service's thread.
class ExecSession final : public RawConnection {
public:
  /// `started`: the agent's answer to exec.start, with `stream`, its number.
  ExecSession(Socket socket, Clients& clients, const Limits& limits, AgentLink& agent, const nlohmann::json& started);

  /// The stream in an answer to exec.start; none if the answer is senseless.
  static std::optional<std::uint32_t> stream_in(const nlohmann::json& started);

  /// Announces the command to the client and passes on what has arrived from it.
  void begin(std::string received);
  /// The command has ended. `how`: the agent's notice.
  void on_exit(const nlohmann::json& how);
  /// The command takes that many more bytes of input.
  void on_input_credit(std::uint64_t bytes);
  /// The unit has ended.
  void end() override;

protected:
  void on_bytes(std::string_view bytes) override;
  void on_sent(std::size_t size) override;
  void on_closed() override;

private:
  void output(wire::ExecKind kind, std::string_view bytes);
  void tell(const nlohmann::json& document);
  void control(const nlohmann::json& document);
  void order(const nlohmann::json& with);
  void take_frames();
  void pass_input();
  bool has_room() const;
  void look_again();
  void go_on();
  void forget();

  AgentLink& agent_;
  std::uint32_t stream_;
  nlohmann::json pid_;
  wire::ExecFrameReader reader_{wire::LARGEST_EXEC_INPUT};
  std::deque<std::size_t> sending_;  ///< bytes of output in each queued frame
  std::uint64_t granted_ = simulator::channel::FIRST_CREDIT;
  std::uint64_t received_ = 0;                 ///< bytes of output
  std::uint64_t owed_ = 0;                     ///< bytes taken by the client and not credited yet
  std::string input_;                          ///< not passed on yet
  std::optional<std::uint64_t> input_credit_;  ///< none: not counted by the agent
  bool ended_ = false;
  boost::asio::steady_timer room_timer_;
};

}  // namespace control::service
