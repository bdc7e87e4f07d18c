#include "control/service/core.h"

#include <boost/asio/post.hpp>

#include "control/service/utf8.h"

namespace control::service {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr unsigned MOST_LOG_STREAMS = 64;
constexpr std::size_t LONGEST_REASON = 4000;  // bytes

/// Whether a route is served while the unit stops.
bool served_at_end(Server server) {
  return server == Server::UNIT || server == Server::STOP || server == Server::LOGS || server == Server::LOG ||
         server == Server::METRICS || server == Server::OPENAPI;
}

}  // namespace

Core::Core(boost::asio::io_context& context, Clients& clients, ServiceOptions options,
           std::function<void(Ended)> on_end)
    : context_(context),
      clients_(clients),
      options_(std::move(options)),
      on_end_(std::move(on_end)),
      logs_(options_.logs, options_.limits.log),
      state_(options_.unit),
      agent_(context, options_.agent, options_.limits, metrics_, *this),
      hub_(context, agent_, options_.limits, metrics_) {}

Core::~Core() = default;

void Core::stop() {
  if (state_.phase() == Phase::STOPPING) {
    return;
  }
  state_.note_stopping();
  tell_state();
  try {
    agent_.request("stop", json::object(), options_.limits.ending, [](const Reply&) {});
  } catch (const RequestError&) {
    // The agent is ended without its help.
  }
  on_end_({Ended::STOPPED, "stopped"});
}

void Core::handle(const ConnectionPointer& connection, const Request& request) {
  try {
    serve(connection, checked_request(request), request);
  } catch (const MethodError& error) {
    Answer answer = error_answer(error);
    answer.fields.emplace_back("Allow", error.allowed);
    connection->answer(answer);
  } catch (const RequestError& error) {
    connection->answer(error_answer(error));
  }
}

void Core::serve(const ConnectionPointer& connection, const CheckedRequest& request, const Request& original) {
  const Server server = request.route->server;
  if (state_.phase() == Phase::STOPPING && !served_at_end(server)) {
    throw RequestError(503, "the unit is stopping");
  }
  switch (server) {
    case Server::AGENT:
      return pass_on(connection, request);
    case Server::UNIT:
      return connection->answer({200, state_.document().dump()});
    case Server::STOP:
      return serve_stop(connection);
    case Server::LOGS:
      return serve_logs(connection);
    case Server::LOG:
      return serve_log(connection, request.with);
    case Server::STREAM:
      return serve_stream(connection, request.with);
    case Server::METRICS:
      return serve_metrics(connection);
    case Server::OPENAPI:
      return serve_openapi(connection);
    case Server::EXEC:
      return serve_exec(connection, request.with, original);
  }
}

void Core::pass_on(const ConnectionPointer& connection, const CheckedRequest& request) {
  std::optional<std::chrono::milliseconds> limit = options_.limits.agent_answer;
  if (request.with.contains("timeout_ms")) {
    *limit += std::chrono::milliseconds(request.with["timeout_ms"].get<std::int64_t>());
  } else if (request.route->limit == TimeLimit::CALL) {
    limit.reset();
  }
  json with = request.with;
  if (request.route->path == std::string("/v1/services")) {
    with["timeout_ms"] = 1;
  }
  agent_.request(request.route->verb, with, limit, [connection](const Reply& reply) {
    connection->answer(reply.error ? error_answer(*reply.error) : Answer{200, reply.text});
  });
}

void Core::tell_state() {
  hub_.publish("state", {{"state", state_.phase_name()}});
}

void Core::on_notice(const std::string& name, const json& notice) {
  if (name == "ready") {
    state_.note_ready();
    announce();
  } else if (name == "host") {
    note_host(notice);
  } else if (name == "dialogs") {
    hub_.refresh_dialogs();
  } else if (name == "log_stream") {
    note_log(notice);
  } else if (name == "exit") {
    note_exit(notice);
  } else if (name == "credit") {
    note_credit(notice);
  } else if (name == "failed") {
    const json what = notice.value("what", json());
    agent_.fail(what.is_string() ? what.get<std::string>().substr(0, LONGEST_REASON) : "the unit could not be set up");
  }
}

/// Tells that the unit runs, the first time.
void Core::announce() {
  if (state_.phase() != Phase::RUNNING || std::exchange(announced_, true)) {
    return;
  }
  tell_state();
  if (options_.on_ready) {
    options_.on_ready();
  }
}

void Core::note_host(const json& notice) {
  if (!state_.note_host(notice)) {
    agent_.fail("the agent told of the host in a form that is not known");
    return;
  }
  hub_.publish("host", state_.host());
  announce();
}

void Core::note_log(const json& notice) {
  const auto stream = ExecSession::stream_in(notice);
  const json name = notice.value("name", json());
  if (!stream || !name.is_string() || ++log_streams_ > MOST_LOG_STREAMS) {
    agent_.fail("the agent opened a log in a form that is not known, or too many");
    return;
  }
  if (logs_.open(name.get<std::string>())) {
    agent_.listen(*stream, [this, log = name.get<std::string>()](std::string_view bytes) { append_log(log, bytes); });
  }
}

void Core::append_log(const std::string& name, std::string_view bytes) {
  const std::uint64_t at = logs_.size(name);
  const std::size_t kept = logs_.append(name, bytes);
  for (const auto& weak : followers_) {
    if (const auto follower = weak.lock()) {
      follower->continue_sending();
    }
  }
  if (kept == 0 || !hub_.wanted("log")) {
    unfinished_.erase(name);
    return;
  }
  // Characters are told whole.
  std::string& rest = unfinished_[name];
  const std::string text = rest + std::string(bytes.substr(0, kept));
  const std::size_t complete = complete_characters(text);
  if (complete != 0) {
    hub_.publish("log", {{"name", name}, {"from", at - rest.size()}, {"text", text.substr(0, complete)}});
  }
  rest = text.substr(complete);
}

ExecSession* Core::command_of(const json& notice) {
  const auto stream = ExecSession::stream_in(notice);
  const auto found = stream ? commands_.find(*stream) : commands_.end();
  const auto session = found == commands_.end() ? nullptr : found->second.lock();
  // Alive as long as its connection, which this thread serves.
  return session.get();
}

void Core::note_exit(const json& notice) {
  if (ExecSession* session = command_of(notice)) {
    session->on_exit(notice);
  }
  if (const auto stream = ExecSession::stream_in(notice)) {
    commands_.erase(*stream);
  }
}

void Core::note_credit(const json& notice) {
  const json bytes = notice.value("bytes", json());
  ExecSession* session = command_of(notice);
  if (session != nullptr && bytes.is_number_unsigned()) {
    session->on_input_credit(bytes.get<std::uint64_t>());
  }
}

void Core::on_agent_end(const std::string& reason, bool failed) {
  state_.note_stopping();
  tell_state();
  on_end_({failed ? Ended::AGENT_FAILED : Ended::AGENT_GONE, reason});
}

}  // namespace control::service
