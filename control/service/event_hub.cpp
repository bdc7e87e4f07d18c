#include "control/service/event_hub.h"

#include <algorithm>

namespace control::service {
namespace {

using nlohmann::json;

/// The number of the next event in an answer of eventlog.read, and whether it holds events.
std::optional<std::pair<std::uint64_t, bool>> place_in(const Reply& reply) {
  if (reply.error) {
    return std::nullopt;
  }
  const json next = reply.ok.value("next", json());
  const json events = reply.ok.value("events", json());
  if (!next.is_number_unsigned() || !events.is_array()) {
    return std::nullopt;
  }
  return std::pair(next.get<std::uint64_t>(), !events.empty());
}

/// Sends a client the watched settings whose values it does not know yet.
void tell_changes(EventStream& stream, const json& settings) {
  json changed = json::object();
  for (const json& row : settings) {
    const json name = row.is_object() ? row.value("name", json()) : json();
    const std::string key = name.is_string() ? name.get<std::string>() : "";
    const auto& watched = stream.interest().settings;
    if (std::find(watched.begin(), watched.end(), key) == watched.end()) {
      continue;
    }
    const json value = row.value("value", json());
    if (!stream.known.contains(key) || stream.known[key] != value) {
      stream.known[key] = value;
      changed[key] = value;
    }
  }
  if (!changed.empty()) {
    stream.event("settings", json{{"values", changed}}.dump(-1, ' ', false, json::error_handler_t::replace));
  }
}

/// The answer as an event's data, which has no line breaks.
std::string data_of(const Reply& reply) {
  return reply.text.find_first_of("\r\n") == std::string::npos ? reply.text : reply.ok.dump();
}

json rows_in(const Reply& reply) {
  const json rows = reply.error ? json() : reply.ok.value("settings", json());
  return rows.is_array() ? rows : json::array();
}

}  // namespace

const std::vector<std::string>& event_types() {
  static const std::vector<std::string> all{"state", "host", "dialogs", "settings", "eventlog", "log"};
  return all;
}

EventHub::EventHub(boost::asio::io_context& context, AgentLink& agent, const Limits& limits, Metrics& metrics)
    : agent_(agent), limits_(limits), metrics_(metrics), settings_timer_(context), eventlog_timer_(context) {}

void EventHub::prepare(const Interest& interest, const Begin& begin) {
  const bool eventlog = interest.events.count("eventlog") != 0 && !next_event_;
  const auto then = [this, eventlog, begin](const std::optional<RequestError>& error, const json& settings) {
    if (error || !eventlog || agent_.ended()) {
      begin(error, settings);
    } else {
      catch_up([begin, settings] { begin({}, settings); });
    }
  };
  if (interest.settings.empty()) {
    then({}, json::array());
    return;
  }
  agent_.request("settings.list", {{"names", interest.settings}}, limits_.agent_answer,
                 [then](const Reply& reply) { then(reply.error, rows_in(reply)); });
}

/// Finds the end of the event log.
void EventHub::catch_up(const std::function<void()>& done) {
  const std::uint64_t from = next_event_.value_or(0);
  const auto go_on = [this, from, done](const Reply& reply) {
    const auto place = place_in(reply);
    if (place) {
      next_event_ = place->first;
    }
    place && place->second && place->first > from && !agent_.ended() ? catch_up(done) : done();
  };
  try {
    agent_.request("eventlog.read", {{"from", from}}, limits_.agent_answer, go_on);
  } catch (const RequestError&) {
    done();
  }
}

void EventHub::add(const std::shared_ptr<EventStream>& stream, const json& settings) {
  streams_.push_back(stream);
  metrics_.streams = listening("").size();
  tell_changes(*stream, settings);
  if (stream->wants("dialogs")) {
    refresh_dialogs();
  }
  if (!polls_settings_ && !stream->interest().settings.empty()) {
    polls_settings_ = true;
    later(settings_timer_, limits_.settings_poll, &EventHub::poll_settings);
  }
  if (!polls_eventlog_ && stream->wants("eventlog")) {
    polls_eventlog_ = true;
    later(eventlog_timer_, limits_.eventlog_poll, &EventHub::poll_eventlog);
  }
}

EventHub::Streams EventHub::listening(const std::string& type) {
  Streams found;
  const auto gone = [&](const std::weak_ptr<EventStream>& weak) {
    const auto stream = weak.lock();
    if (stream == nullptr || !stream->listening()) {
      return true;
    }
    if (type.empty() || stream->wants(type)) {
      found.push_back(stream);
    }
    return false;
  };
  streams_.erase(std::remove_if(streams_.begin(), streams_.end(), gone), streams_.end());
  metrics_.streams = streams_.size();
  return found;
}

bool EventHub::wanted(const std::string& type) {
  return !listening(type).empty();
}

void EventHub::publish(const std::string& type, const nlohmann::ordered_json& data) {
  const Streams streams = listening(type);
  if (streams.empty()) {
    return;
  }
  const std::string text = data.dump(-1, ' ', false, json::error_handler_t::replace);
  for (const auto& stream : streams) {
    stream->event(type, text);
  }
}

void EventHub::refresh_dialogs() {
  if (!wanted("dialogs") || agent_.ended()) {
    return;
  }
  if (asks_dialogs_) {
    dialogs_changed_ = true;
    return;
  }
  try {
    agent_.request("dialogs.list", json::object(), limits_.agent_answer, [this](const Reply& reply) {
      asks_dialogs_ = false;
      if (!reply.error) {
        for (const auto& stream : listening("dialogs")) {
          stream->event("dialogs", data_of(reply));
        }
      }
      if (std::exchange(dialogs_changed_, false)) {
        refresh_dialogs();
      }
    });
    asks_dialogs_ = true;
  } catch (const RequestError&) {
    // The agent is busy; the next change asks again.
  }
}

void EventHub::later(boost::asio::steady_timer& timer, std::chrono::milliseconds time, void (EventHub::*poll)()) {
  timer.expires_after(time);
  timer.async_wait([this, poll](boost::system::error_code failure) {
    if (!failure && !agent_.ended()) {
      (this->*poll)();
    }
  });
}

void EventHub::poll_settings() {
  std::set<std::string> names;
  for (const auto& stream : listening("")) {
    names.insert(stream->interest().settings.begin(), stream->interest().settings.end());
  }
  polls_settings_ = !names.empty();
  if (!polls_settings_) {
    return;
  }
  try {
    agent_.request("settings.list", {{"names", names}}, limits_.agent_answer, [this](const Reply& reply) {
      const json rows = rows_in(reply);
      for (const auto& stream : listening("settings")) {
        tell_changes(*stream, rows);
      }
      later(settings_timer_, limits_.settings_poll, &EventHub::poll_settings);
    });
  } catch (const RequestError&) {
    later(settings_timer_, limits_.settings_poll, &EventHub::poll_settings);
  }
}

void EventHub::poll_eventlog() {
  polls_eventlog_ = wanted("eventlog");
  if (!polls_eventlog_) {
    next_event_.reset();
    return;
  }
  const json with = {{"from", next_event_.value_or(0)}};
  try {
    agent_.request("eventlog.read", with, limits_.agent_answer, [this](const Reply& reply) {
      const auto place = place_in(reply);
      if (place) {
        next_event_ = place->first;
      }
      if (place && place->second) {
        for (const auto& stream : listening("eventlog")) {
          stream->event("eventlog", data_of(reply));
        }
      }
      later(eventlog_timer_, limits_.eventlog_poll, &EventHub::poll_eventlog);
    });
  } catch (const RequestError&) {
    later(eventlog_timer_, limits_.eventlog_poll, &EventHub::poll_eventlog);
  }
}

}  // namespace control::service
