// The routes that the service answers itself.

#include <algorithm>
#include <boost/asio/post.hpp>

#include "control/service/core.h"
#include "control/service/openapi.h"

namespace control::service {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

/// What a client of the event stream asks for. Throws RequestError.
Interest interest_in(const json& with) {
  Interest interest;
  const auto& all = event_types();
  interest.events = {all.begin(), all.end()};
  if (with.contains("events")) {
    interest.events.clear();
    for (const std::string type : with["events"]) {
      if (std::find(all.begin(), all.end(), type) == all.end()) {
        throw RequestError(400, "no such event type: " + type, "events",
                           "state, host, dialogs, settings, eventlog or log");
      }
      interest.events.insert(type);
    }
  }
  if (with.contains("settings")) {
    interest.settings = with["settings"].get<std::vector<std::string>>();
    interest.events.insert("settings");
  }
  return interest;
}

}  // namespace

void Core::serve_stop(const ConnectionPointer& connection) {
  connection->answer({200, R"({"stopping":true})"});
  boost::asio::post(context_, [this] { stop(); });
}

void Core::serve_logs(const ConnectionPointer& connection) {
  ordered_json logs = ordered_json::array();
  for (const LogSize& log : logs_.sizes()) {
    logs.push_back({{"name", log.name}, {"bytes", log.bytes}, {"dropped", log.dropped}});
  }
  connection->answer({200, ordered_json{{"logs", std::move(logs)}}.dump()});
}

void Core::serve_log(const ConnectionPointer& connection, const json& with) {
  const std::string name = with["name"];
  if (!LogStore::known(name)) {
    throw RequestError(404, "no such log", name);
  }
  Connection::Taken taken = connection->take_over();
  const auto sender = std::make_shared<LogSender>(std::move(taken.socket), clients_, options_.limits, logs_, name,
                                                  with.value("from", std::uint64_t{0}), with.value("follow", false));
  on_answer(200);
  followers_.erase(
      std::remove_if(followers_.begin(), followers_.end(), [](const auto& each) { return each.expired(); }),
      followers_.end());
  followers_.push_back(sender);
  sender->start(std::move(taken.received));
  sender->begin();
  if (agent_.ended()) {
    sender->end();
  }
}

void Core::serve_stream(const ConnectionPointer& connection, const json& with) {
  const Interest interest = interest_in(with);
  hub_.prepare(interest, [=](const std::optional<RequestError>& error, const json& settings) {
    if (error) {
      connection->answer(error_answer(*error));
    } else if (connection->open()) {
      begin_stream(connection, interest, settings);
    }
  });
}

void Core::begin_stream(const ConnectionPointer& connection, const Interest& interest, const json& settings) {
  Connection::Taken taken = connection->take_over();
  const auto stream = std::make_shared<EventStream>(std::move(taken.socket), clients_, options_.limits, interest);
  on_answer(200);
  stream->start(std::move(taken.received));
  stream->begin();
  const ordered_json unit = state_.document();
  stream->event("hello", ordered_json{{"name", unit["name"]}, {"state", unit["state"]}}.dump());
  if (stream->wants("state")) {
    stream->event("state", ordered_json{{"state", unit["state"]}}.dump());
  }
  if (stream->wants("host")) {
    stream->event("host", state_.host().dump());
  }
  hub_.add(stream, settings);
  if (agent_.ended()) {
    stream->end();
  }
}

void Core::serve_metrics(const ConnectionPointer& connection) {
  metrics_.connections = clients_.count();
  const std::chrono::duration<double> uptime = std::chrono::steady_clock::now() - started_;
  connection->answer({200, metrics_text(metrics_, logs_.sizes(), uptime.count()),
                      "application/openmetrics-text; version=1.0.0; charset=utf-8"});
}

void Core::serve_openapi(const ConnectionPointer& connection) {
  connection->answer({200, std::string(openapi_text())});
}

void Core::serve_exec(const ConnectionPointer& connection, json with, const Request& original) {
  if (original.upgrade != "unit-exec") {
    throw RequestError(400, "must be unit-exec", "Upgrade", "unit-exec");
  }
  if (with["argv"].empty() || with["argv"][0] == "") {
    throw RequestError(400, "must name a program", "argv", "array of texts without NUL bytes, at least one");
  }
  const json defaults = {{"environment", json::object()}, {"directory", "/"}, {"stdin", false}, {"terminal", nullptr}};
  for (const auto& [name, value] : defaults.items()) {
    if (!with.contains(name)) {
      with[name] = value;
    }
  }
  // The link has no limit here: a command that starts too late must be abandoned.
  const auto timer = std::make_shared<boost::asio::steady_timer>(context_, options_.limits.agent_answer);
  const auto answered = std::make_shared<bool>(false);
  timer->async_wait([connection, answered](boost::system::error_code failure) {
    if (!failure && !std::exchange(*answered, true)) {
      connection->answer(error_answer({504, "the unit's agent did not answer in time"}));
    }
  });
  agent_.request("exec.start", with, std::nullopt, [=](const Reply& reply) {
    timer->cancel();
    if (std::exchange(*answered, true) || !connection->open()) {
      abandon(reply.ok);
    } else if (reply.error) {
      connection->answer(error_answer(*reply.error));
    } else if (!ExecSession::stream_in(reply.ok)) {
      connection->answer(error_answer({502, "the unit's agent gave a senseless answer"}));
    } else {
      begin_command(connection, reply.ok);
    }
  });
}

void Core::begin_command(const ConnectionPointer& connection, const json& started) {
  Connection::Taken taken = connection->take_over();
  const auto session =
      std::make_shared<ExecSession>(std::move(taken.socket), clients_, options_.limits, agent_, started);
  on_answer(101);
  ++metrics_.commands;
  commands_[*ExecSession::stream_in(started)] = session;
  session->begin(std::move(taken.received));
}

/// Ends a command whose client is gone.
void Core::abandon(const json& started) {
  const auto stream = started.is_object() ? ExecSession::stream_in(started) : std::nullopt;
  if (!stream || agent_.ended()) {
    return;
  }
  try {
    agent_.request("exec.control", {{"stream", *stream}, {"abandon", true}}, options_.limits.agent_answer,
                   [](const Reply&) {});
  } catch (const RequestError&) {
    // The agent takes nothing any more: the unit is about to fail.
  }
}

}  // namespace control::service
