#include <strings.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>

#include "tool/commands.h"
#include "tool/dialog_text.h"
#include "tool/errors.h"
#include "tool/running_unit.h"
#include "tool/started_unit.h"

namespace tool {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;
using simulator::model::Dialog;
using simulator::model::UnitModel;

constexpr std::int32_t POWER_SWITCH = 0x100;
constexpr const char* QUESTION = "System Prompt";
constexpr std::chrono::milliseconds STEP{5};
constexpr std::chrono::seconds PATIENCE{30};

/// How this command waits; for a unit that it started, waiting throws when the unit exits.
struct Waiting {
  std::function<void(int descriptor)> until_readable;
  std::function<void(std::chrono::milliseconds time)> pause;
};

/// One line of standard input; none at end of file.
std::optional<std::string> read_line(const Waiting& waiting) {
  std::string line;
  for (char byte = 0;; line += byte) {
    waiting.until_readable(STDIN_FILENO);
    if (read(STDIN_FILENO, &byte, 1) != 1) {
      return line.empty() ? std::nullopt : std::optional(line);
    }
    if (byte == '\n') {
      return line;
    }
  }
}

/// The label of the button chosen by typing its label (in any case) or its number, counted from 1. Asks again until the
/// answer is valid.
std::string ask(const Dialog& dialog, const Waiting& waiting, std::FILE* screen) {
  const std::vector<std::string> labels = button_labels(dialog);
  std::fputs(as_text(dialog).c_str(), screen);
  for (;;) {
    std::fputs("answer: ", screen);
    std::fflush(screen);
    const std::optional<std::string> line = read_line(waiting);
    if (!line) {
      throw CommandError(STATUS_FAILED, "standard input ended before the question was answered");
    }
    for (std::size_t i = 0; i < labels.size(); ++i) {
      if (strcasecmp(line->c_str(), labels[i].c_str()) == 0 || *line == std::to_string(i + 1)) {
        return labels[i];
      }
    }
    std::fprintf(screen, "no button \"%s\"\n", line->c_str());
  }
}

bool is_handled(UnitModel& model, std::uint64_t interrupt) {
  return model.power_supply().wait_interrupt_handled(interrupt, std::chrono::milliseconds(0));
}

/// The question on the unit's screen; none if the handler returns without asking.
std::optional<Dialog> wait_for_question(UnitModel& model, std::uint64_t interrupt, const Waiting& waiting) {
  while (!is_handled(model, interrupt)) {
    for (const Dialog& dialog : model.gui().dialogs()) {
      if (dialog.title == QUESTION && dialog.waits && !dialog.answer) {
        return dialog;
      }
    }
    waiting.pause(STEP);
  }
  return std::nullopt;
}

/// The recorded calls from line number `first` on.
std::vector<json> calls_since(const std::filesystem::path& state, std::size_t first) {
  std::vector<json> calls;
  std::ifstream file(state / "run/unit/calls.jsonl");
  std::size_t number = 0;
  for (std::string line; std::getline(file, line);) {
    if (number++ >= first) {
      calls.push_back(json::parse(line));
    }
  }
  return calls;
}

void print_calls(const std::vector<json>& calls, bool shut_down, bool as_json) {
  if (as_json) {
    ordered_json document = {{"shut_down", shut_down}, {"calls", ordered_json::array()}};
    for (const json& call : calls) {
      document["calls"].push_back({{"at", call["at"]}, {"args", call["args"]}});
    }
    std::printf("%s\n", document.dump().c_str());
    return;
  }
  std::printf("\n%s; calls in order:\n", shut_down ? "The unit has shut down" : "The unit stays on");
  for (std::size_t i = 0; i < calls.size(); ++i) {
    const double ms = (calls[i]["t_ns"].get<double>() - calls[0]["t_ns"].get<double>()) / 1e6;
    std::printf("%3zu  %10.3f ms  %s %s\n", i + 1, ms, calls[i]["at"].get<std::string>().c_str(),
                calls[i]["args"].dump().c_str());
  }
}

/// Presses the switch, gets the question answered, waits until the interrupt has been handled and prints the recorded
/// calls.
void press_switch(UnitModel& model, const std::filesystem::path& state, const Waiting& waiting, bool as_json) {
  std::FILE* const screen = as_json ? stderr : stdout;
  const std::filesystem::path mark = state / "run/unit/shutdown";
  std::filesystem::remove(mark);
  if (!model.record().on()) {
    model.record().start();
  }
  const std::size_t before = calls_since(state, 0).size();
  const std::uint64_t interrupt = model.power_supply().raise_interrupt(POWER_SWITCH);
  if (const std::optional<Dialog> dialog = wait_for_question(model, interrupt, waiting)) {
    model.gui().answer(QUESTION, ask(*dialog, waiting, screen));
  }
  for (const auto end = std::chrono::steady_clock::now() + PATIENCE; !is_handled(model, interrupt);
       waiting.pause(STEP)) {
    if (std::chrono::steady_clock::now() > end) {
      throw CommandError(STATUS_FAILED, "the unit did not shut down within 30 s");
    }
  }
  const bool shut_down = std::filesystem::exists(mark);
  for (const Dialog& dialog : model.gui().dialogs()) {
    if (shut_down && !dialog.waits) {
      std::fputs(as_text(dialog).c_str(), screen);
    }
  }
  print_calls(calls_since(state, before), shut_down, as_json);
}

}  // namespace

void shut_down(const ShutdownOptions& options) {
  if (options.on_running) {
    UnitModel model = options.running.model();
    const Waiting waiting{[](int) {}, [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }};
    return press_switch(model, options.running.state(), waiting, options.json);
  }
  std::fputs("Starting a unit\n", stderr);
  const Signals signals;
  StartedUnit unit(options.unit, {-1, -1}, signals);
  const Waiting waiting{[&unit](int descriptor) { unit.wait_readable(descriptor); },
                        [&unit](std::chrono::milliseconds time) { unit.pause(time); }};
  press_switch(unit.model(), unit.state(), waiting, options.json);
}

}  // namespace tool
