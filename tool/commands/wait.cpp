#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/dialog_text.h"
#include "tool/errors.h"
#include "tool/host_end.h"
#include "tool/numbers.h"
#include "tool/operations.h"
#include "tool/output.h"

namespace tool {
namespace {

using control::client::EventStream;
using nlohmann::json;
using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

/// Longest time between two looks: the events of the stream only make this command look earlier.
constexpr std::chrono::milliseconds LOOK_INTERVAL{250};

/// What to wait for: "SETTING=VALUE", "dialog", "dialog=TITLE", "event", "event=TEXT" or "host-exit".
struct Condition {
  std::string text;
  std::string name;
  std::optional<std::string> value;
};

Condition condition_in(const std::string& text) {
  const std::size_t sign = text.find('=');
  Condition condition{text, text.substr(0, sign), std::nullopt};
  if (sign != std::string::npos) {
    condition.value = text.substr(sign + 1);
  }
  const bool known = condition.name == "dialog" || condition.name == "event" || condition.name == "host-exit";
  if (known ? condition.name == "host-exit" && condition.value : !condition.value || condition.name.empty()) {
    throw UsageError("--for: must be SETTING=VALUE, dialog[=TITLE], event[=TEXT] or host-exit, not \"" + text + "\"");
  }
  return condition;
}

/// Looks at a unit for conditions.
class Watcher {
public:
  explicit Watcher(Connection& connection)
      : connection_(connection), first_event_(connection.get("/v1/eventlog").at("next").get<std::int64_t>()) {}

  bool holds(const Condition& condition) {
    if (condition.name == "host-exit") {
      return host_has_exited();
    }
    if (condition.name == "dialog") {
      return has_dialog(condition.value);
    }
    if (condition.name == "event") {
      return has_event(condition.value);
    }
    return has_value(condition);
  }

private:
  bool host_has_exited() {
    const ordered_json host = connection_.get("/v1/unit").at("host");
    if (!host_has_ended(host)) {
      return false;
    }
    print("host " + end_of_host(host) + '\n');
    return true;
  }

  bool has_dialog(const std::optional<std::string>& title) {
    for (const ordered_json& dialog : connection_.rows("/v1/dialogs", "dialogs")) {
      if (is_open(dialog) && (!title || dialog.at("title") == *title)) {
        return true;
      }
    }
    return false;
  }

  /// Whether an event that contains the text has been logged since the beginning.
  bool has_event(const std::optional<std::string>& text) {
    for (const ordered_json& event : connection_.rows("/v1/eventlog?from=" + std::to_string(first_event_), "events")) {
      if (!text || event.dump().find(*text) != std::string::npos) {
        print_json(event);
        return true;
      }
    }
    return false;
  }

  bool has_value(const Condition& condition) {
    const ordered_json value = connection_.get("/v1/settings/" + control::client::escaped(condition.name)).at("value");
    return value == ordered_json(typed_argument(*condition.value)) || value == ordered_json(*condition.value);
  }

  Connection& connection_;
  std::int64_t first_event_;
};

/// The event stream, with the settings that are waited for.
std::string stream_target(const std::vector<Condition>& conditions) {
  std::vector<std::string> settings;
  for (const Condition& condition : conditions) {
    if (condition.name != "dialog" && condition.name != "event" && condition.name != "host-exit") {
      settings.push_back(condition.name);
    }
  }
  return with_names("/v1/stream", "settings", settings);
}

int run(const Arguments& arguments) {
  std::vector<Condition> conditions;
  for (const std::string& text : arguments.all("for")) {
    conditions.push_back(condition_in(text));
  }
  if (conditions.empty()) {
    throw UsageError("--for is missing; see \"unit wait --help\"");
  }
  std::optional<Clock::time_point> end;
  if (const auto timeout = arguments.value("timeout")) {
    end = Clock::now() + seconds("--timeout", *timeout);
  }
  Connection connection(arguments);
  Watcher watcher(connection);
  std::optional<EventStream> stream;
  for (;;) {
    for (auto condition = conditions.begin(); condition != conditions.end();) {
      condition = watcher.holds(*condition) ? conditions.erase(condition) : condition + 1;
    }
    if (conditions.empty()) {
      return 0;
    }
    if (end && Clock::now() >= *end) {
      throw CommandError(STATUS_FAILED, "timed out waiting for " + conditions.front().text);
    }
    if (!stream) {
      stream.emplace(connection.socket(), stream_target(conditions));
    }
    stream->next(LOOK_INTERVAL);
  }
}

}  // namespace

Command wait_command() {
  return {"wait",
          "Units",
          "Wait until something has happened on a unit",
          {unit_option(),
           {"for",
            0,
            "CONDITION",
            "SETTING=VALUE, dialog[=TITLE], event[=TEXT] or host-exit",
            true,
            Offer::WORDS,
            {"dialog", "event", "host-exit"}},
           {"timeout", 0, "SECONDS", "give up after this time (default: no limit)"}},
          {},
          run};
}

}  // namespace tool
