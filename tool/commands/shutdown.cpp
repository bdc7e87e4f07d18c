#include <poll.h>

#include <cstdio>

#include "tool/commands/interrupts.h"
#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/dialog_text.h"
#include "tool/errors.h"
#include "tool/host_output.h"
#include "tool/launch.h"
#include "tool/output.h"
#include "tool/prompt.h"
#include "tool/started_unit.h"
#include "tool/text.h"

namespace tool {
namespace {

using control::client::Client;
using nlohmann::json;
using nlohmann::ordered_json;
using Clock = std::chrono::steady_clock;

constexpr const char* QUESTION = "System Prompt";
constexpr std::chrono::milliseconds LOOK_INTERVAL{10};
constexpr std::chrono::seconds PATIENCE{30};

/// Presses the power switch of a unit, gets its question answered and prints the calls that followed.
class Shutdown {
public:
  Shutdown(const control::client::FoundUnit& unit, bool as_json)
      : connection_(unit),
        switch_(unit.socket()),
        output_(unit.socket()),
        prompt_(as_json ? stderr : stdout, output_),
        as_json_(as_json) {}

  void run() {
    record();
    if (const auto open = question()) {
      // Pressed before: that request is still being handled. Handling goes in order, so an interrupt without effect has
      // its turn after it.
      answer(*open);
      wait_handled(COVER_OPEN);
      strange_ = true;
    } else {
      wait_handled(POWER_SWITCH);
    }
    report();
  }

private:
  /// Notes where the record of calls stands, and switches it on.
  void record() {
    const ordered_json kept = connection_.get("/v1/record");
    if (kept.at("on") == true) {
      first_ = kept.at("next").get<std::int64_t>();
    } else {
      connection_.send("PUT", "/v1/record", {{"on", true}});
    }
  }

  std::optional<ordered_json> question() {
    for (const ordered_json& dialog : connection_.rows("/v1/dialogs", "dialogs")) {
      if (dialog.at("title") == QUESTION && is_open(dialog)) {
        return dialog;
      }
    }
    return std::nullopt;
  }

  /// Raises the interrupt and waits until it has been handled; meanwhile, asks the question when it appears.
  void wait_handled(std::int64_t value) {
    deadline_ = Clock::now() + PATIENCE;
    switch_.wait_with([this](int descriptor) { attend(descriptor); });
    switch_.send("POST", "/v1/interrupts", {{"value", value}, {"wait", true}});
    output_.show_arrived();
  }

  void attend(int descriptor) {
    for (;;) {
      output_.show_arrived();
      pollfd event{descriptor, POLLIN, 0};
      if (poll(&event, 1, static_cast<int>(LOOK_INTERVAL.count())) == 1) {
        return;
      }
      if (const auto open = question()) {
        answer(*open);
      } else if (Clock::now() > deadline_) {
        throw CommandError(STATUS_FAILED, "the unit did not shut down within 30 s");
      }
    }
  }

  void answer(const ordered_json& dialog) {
    const std::string label = prompt_.ask(dialog);
    connection_.send("POST", "/v1/dialogs/" + dialog.at("id").dump() + "/answer", {{"button", label}});
    deadline_ = Clock::now() + PATIENCE;
  }

  void report() {
    ordered_json calls = connection_.rows("/v1/record?from=" + std::to_string(first_), "calls");
    if (strange_) {
      drop_own_interrupt(calls);
    }
    bool shut_down = false;
    for (const ordered_json& call : calls) {
      shut_down = shut_down || call.value("at", "") == "shell.shutdown";
    }
    if (shut_down) {
      for (const ordered_json& dialog : connection_.rows("/v1/dialogs", "dialogs")) {
        if (!dialog.at("waits").get<bool>()) {
          prompt_.say(dialog_as_text(dialog));
        }
      }
    }
    as_json_ ? print_calls_as_json(calls, shut_down) : print_calls(calls, shut_down);
  }

  /// Removes the crossing that the interrupt without effect caused: the last one of its kind.
  static void drop_own_interrupt(ordered_json& calls) {
    for (std::size_t i = calls.size(); i > 0; --i) {
      if (calls[i - 1].value("at", "") == "psdriver.interrupt") {
        calls.erase(calls.begin() + static_cast<std::ptrdiff_t>(i - 1), calls.end());
        return;
      }
    }
  }

  static void print_calls_as_json(const ordered_json& calls, bool shut_down) {
    ordered_json document = {{"shut_down", shut_down}, {"calls", ordered_json::array()}};
    for (const ordered_json& call : calls) {
      document["calls"].push_back({{"t_ns", call.at("t_ns")}, {"at", call.at("at")}, {"args", call.at("args")}});
    }
    print_json(document);
  }

  static void print_calls(const ordered_json& calls, bool shut_down) {
    print(shut_down ? "\nThe unit has shut down. Calls:\n" : "\nThe unit stays on. Calls:\n");
    for (std::size_t i = 0; i < calls.size(); ++i) {
      const double ms = (calls[i].at("t_ns").get<double>() - calls[0].at("t_ns").get<double>()) / 1e6;
      char place[40];
      std::snprintf(place, sizeof place, "%3zu  %10.3f ms  ", i + 1, ms);
      print(place + printable(calls[i].at("at").get<std::string>() + " " + calls[i].at("args").dump()) + '\n');
    }
  }

  Connection connection_;
  Client switch_;
  HostOutput output_;
  Prompt prompt_;
  bool as_json_;
  bool strange_ = false;  ///< the request was somebody else's
  std::int64_t first_ = 0;
  Clock::time_point deadline_;
};

int run(const Arguments& arguments) {
  const bool as_json = arguments.has("json");
  if (!arguments.has("new")) {
    for (const Option& option : launch_options()) {
      if (arguments.has(option.name)) {
        throw UsageError("--" + option.name + ": needs --new");
      }
    }
    Shutdown(chosen_unit(arguments.text("unit")), as_json).run();
    return 0;
  }
  if (arguments.has("unit")) {
    throw UsageError("--unit: cannot be used with --new");
  }
  json launch = launch_document(arguments);
  launch["host"] = "unit-host";
  StartedUnit unit(launch);
  Shutdown(unit.unit(), as_json).run();
  unit.stop();
  return 0;
}

}  // namespace

Command shutdown_command() {
  std::vector<Option> options = {
      unit_option(), {"new", 0, "", "start a unit for it, stopped afterwards"}, json_option()};
  const std::vector<Option> more = launch_options();
  options.insert(options.end(), more.begin(), more.end());
  return {"shutdown",
          "Switches and screen",
          "Press the power switch, read the answer from standard input, print the calls that follow",
          options,
          {},
          run};
}

}  // namespace tool
