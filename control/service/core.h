#pragma once

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "control/service/agent_link.h"
#include "control/service/connection.h"
#include "control/service/event_hub.h"
#include "control/service/exec_session.h"
#include "control/service/log_sender.h"
#include "control/service/log_store.h"
#include "control/service/routes.h"
#include "control/service/service.h"
#include "control/service/unit_state.h"

namespace control::service {

/// Joins the parts of the service: serves requests with the agent and the logs, and reacts to the agent. The service's
/// thread.
class Core final : public RequestHandler, public AgentListener {
public:
  /// `on_end` is called once, when the service is to end.
  Core(boost::asio::io_context& context, Clients& clients, ServiceOptions options, std::function<void(Ended)> on_end);
  ~Core() override;

  void start() { agent_.start(); }
  /// Orders the agent to end.
  void stop();
  /// Closes the link to the agent.
  void close_agent() { agent_.close(); }
  /// A connection was beyond the limit.
  void note_refused() { ++metrics_.connections_refused; }

  void handle(const std::shared_ptr<Connection>& connection, const Request& request) override;
  void on_answer(int status) override { ++metrics_.requests[status]; }
  void on_notice(const std::string& name, const nlohmann::json& notice) override;
  void on_agent_end(const std::string& reason, bool failed) override;

private:
  using ConnectionPointer = std::shared_ptr<Connection>;

  void serve(const ConnectionPointer& connection, const CheckedRequest& request, const Request& original);
  void pass_on(const ConnectionPointer& connection, const CheckedRequest& request);
  void serve_stop(const ConnectionPointer& connection);
  void serve_logs(const ConnectionPointer& connection);
  void serve_log(const ConnectionPointer& connection, const nlohmann::json& with);
  void serve_stream(const ConnectionPointer& connection, const nlohmann::json& with);
  static void serve_openapi(const ConnectionPointer& connection);
  void serve_metrics(const ConnectionPointer& connection);
  void serve_exec(const ConnectionPointer& connection, nlohmann::json with, const Request& original);
  void begin_stream(const ConnectionPointer& connection, const Interest& interest, const nlohmann::json& settings);
  void begin_command(const ConnectionPointer& connection, const nlohmann::json& started);
  void abandon(const nlohmann::json& started);

  void note_host(const nlohmann::json& notice);
  void note_log(const nlohmann::json& notice);
  void append_log(const std::string& name, std::string_view bytes);
  void note_exit(const nlohmann::json& notice);
  void note_credit(const nlohmann::json& notice);
  void tell_state();
  void announce();
  ExecSession* command_of(const nlohmann::json& notice);

  boost::asio::io_context& context_;
  Clients& clients_;
  ServiceOptions options_;
  std::function<void(Ended)> on_end_;
  std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
  Metrics metrics_;
  LogStore logs_;
  UnitState state_;
  AgentLink agent_;
  EventHub hub_;
  std::map<std::string, std::string> unfinished_;  ///< of each log: bytes of a character that is not complete yet
  std::map<std::uint32_t, std::weak_ptr<ExecSession>> commands_;
  std::vector<std::weak_ptr<LogSender>> followers_;
  unsigned log_streams_ = 0;
  bool announced_ = false;
};

}  // namespace control::service
