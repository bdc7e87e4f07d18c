#include "tool/live_view.h"
#include "tool/connection.h"

#include <poll.h>
#include <signal.h>

#include <cerrno>

#include "tool/dialog_text.h"
#include "tool/host_end.h"
#include "tool/log_lines.h"
#include "tool/operations.h"
#include "tool/signals.h"
#include "tool/text.h"

namespace tool {

using control::client::Client;
using control::client::Event;
using control::client::EventStream;
using nlohmann::json;
using nlohmann::ordered_json;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;

namespace {

constexpr milliseconds REFRESH_INTERVAL{1000};
/// Limit for the first published external voltage.
constexpr int FIRST_PATIENCE_MS = 200;
/// An operation that takes this long is said to hang.
constexpr seconds SILENCE_SHOWN{2};
constexpr std::size_t LINES_KEPT = 100;

/// A termination signal has arrived.
struct Stopped {};

/// Reads one unit and keeps its view up to date, also while an operation does not answer.
class LiveLoop {
public:
  LiveLoop(const control::client::FoundUnit& unit, View& view)
      : view_(view),
        socket_(unit.socket()),
        stream_(socket_, "/v1/stream?events=host,dialogs,log"),
        operations_(socket_),
        questions_(socket_) {
    live_.name = unit.name;
    operations_.wait_with([this](int descriptor) { wait(descriptor, std::nullopt); });
  }

  [[noreturn]] void run() {
    take_kept_host_logs(questions_, lines_);
    look_at_host();
    look_at_dialogs();
    for (int patience = FIRST_PATIENCE_MS;; patience = 0) {
      live_.state =
          read_unit_state([this](const std::string& name, const json& args) { return call(name, args); }, patience);
      view_.state(live_);
      wait(-1, Clock::now() + REFRESH_INTERVAL);
    }
  }

private:
  ordered_json call(const std::string& operation, const json& arguments) {
    live_.operation = operation;
    asked_ = Clock::now();
    ordered_json answer;
    try {
      answer = operations_.send("POST", "/v1/operations/" + operation, {{"args", arguments}});
    } catch (const control::client::ApiError& error) {
      look_at_host();
      throw NoValue(error.what());
    }
    live_.operation.clear();
    const bool was_silent = live_.silence >= SILENCE_SHOWN;
    live_.silence = seconds(0);
    if (was_silent) {
      view_.notice(live_);
    }
    const std::string exception = exception_in(answer);
    if (!exception.empty()) {
      throw NoValue(operation + ": " + exception);
    }
    return answer;
  }

  /// Waits until the descriptor is readable or `end` has come, and takes part in what happens meanwhile.
  void wait(int descriptor, std::optional<Clock::time_point> end) {
    for (;;) {
      take_events();
      milliseconds left = REFRESH_INTERVAL;
      if (end) {
        left = std::min(left, std::chrono::ceil<milliseconds>(*end - Clock::now()));
        if (left.count() <= 0) {
          return;
        }
      }
      pollfd events[] = {
          {descriptor, POLLIN, 0}, {stream_.descriptor(), POLLIN, 0}, {signals_.descriptor(), POLLIN, 0}};
      if (poll(events, 3, static_cast<int>(left.count())) == -1 && errno != EINTR) {
        return;
      }
      take_signals();
      if (events[0].revents != 0) {
        return;
      }
      look_at_silence();
    }
  }

  void take_signals() {
    while (const std::optional<int> number = signals_.take()) {
      if (*number == SIGWINCH) {
        view_.resized(live_);
      } else if (*number == SIGTSTP) {
        view_.suspend(live_);
      } else {
        throw Stopped{};
      }
    }
  }

  void take_events() {
    while (const std::optional<Event> event = stream_.next(milliseconds(0))) {
      if (event->type == "log") {
        if (is_hosts(event->data.value("name", ""))) {
          lines_.take(*event);
        }
      } else if (event->type == "host") {
        look_at_host();
      } else if (event->type == "dialogs") {
        look_at_dialogs();
      }
    }
  }

  void show_line(const std::string& log, const std::string& line) {
    live_.output.push_back(line);
    if (live_.output.size() > LINES_KEPT) {
      live_.output.pop_front();
    }
    view_.output(live_, log, line);
  }

  void look_at_host() {
    const ordered_json host = questions_.get("/v1/unit").at("host");
    if (host_has_ended(host)) {
      throw HostEnded{host};
    }
  }

  void look_at_dialogs() {
    live_.question.reset();
    for (const ordered_json& dialog : rows_at(questions_, "/v1/dialogs", "dialogs")) {
      if (is_open(dialog)) {
        live_.question = dialog;
      }
    }
    view_.notice(live_);
  }

  void look_at_silence() {
    const seconds silence = std::chrono::duration_cast<seconds>(Clock::now() - asked_);
    if (!live_.operation.empty() && silence != live_.silence) {
      live_.silence = silence;
      if (silence >= SILENCE_SHOWN) {
        view_.notice(live_);
      }
    }
  }

  View& view_;
  LiveUnit live_;
  Signals signals_{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH, SIGTSTP};
  const std::filesystem::path socket_;
  EventStream stream_;
  Client operations_;
  Client questions_;
  Clock::time_point asked_;
  LogLines lines_{[this](const std::string& log, const std::string& line) { show_line(log, line); }};
};

}  // namespace

std::vector<std::string> LiveUnit::notices() const {
  std::vector<std::string> lines;
  if (!operation.empty() && silence >= SILENCE_SHOWN) {
    lines.push_back(operation + ": no answer for " + std::to_string(silence.count()) + " s");
  }
  if (question) {
    lines.push_back(dialog_as_line(*question));
    const std::vector<std::string> labels = button_labels(*question);
    const std::string label = labels.empty() ? "LABEL" : printable(labels.back());
    lines.push_back("Answer it with: unit answer -u " + name + " " + label);
  }
  return lines;
}

void show_live(const control::client::FoundUnit& unit, View& view) {
  try {
    LiveLoop(unit, view).run();
  } catch (const Stopped&) {
    // A termination signal is the normal end.
  }
}

}  // namespace tool
