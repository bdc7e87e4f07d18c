#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/started_unit.h"
#include "tool/unit_state.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

constexpr std::chrono::milliseconds REFRESH_INTERVAL{1000};
/// Time limit for the first published external voltage.
constexpr std::chrono::milliseconds FIRST_PATIENCE{200};

/// The terminal's alternate screen, restored by the destructor.
class Screen {
public:
  Screen() { std::fputs("\x1b[?1049h\x1b[?25l", stdout); }
  ~Screen() {
    std::fputs("\x1b[?25h\x1b[?1049l", stdout);
    std::fflush(stdout);
  }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  void show(const std::string& text) const {
    std::string lines = "\x1b[H";
    for (const char each : text) {
      lines += each == '\n' ? "\x1b[K\n" : std::string(1, each);
    }
    std::fputs((lines + "\x1b[J").c_str(), stdout);
    std::fflush(stdout);
  }
};

void print_state(const ordered_json& state, bool json) {
  std::fputs((json ? state.dump() + '\n' : as_text(state)).c_str(), stdout);
  if (std::fflush(stdout) != 0) {
    throw CommandError(STATUS_FAILED, std::string("standard output: ") + std::strerror(errno));
  }
}

std::string screen_text(const StartedUnit& unit, const ordered_json& state) {
  std::string text = "Simulated unit   " + unit.state().string() + "   Ctrl-C stops it\n\n" + as_text(state);
  text += "Library's output\n";
  for (const std::string& line : unit.last_output()) {
    text += "  " + line + '\n';
  }
  return text;
}

/// Shows the state every second until the unit exits or a signal arrives.
[[noreturn]] void show_forever(StartedUnit& unit, bool json, const Screen* screen) {
  for (std::chrono::milliseconds patience = FIRST_PATIENCE;; patience = std::chrono::milliseconds(0)) {
    const ordered_json state = read_unit_state(unit.host(), patience);
    if (screen != nullptr) {
      screen->show(screen_text(unit, state));
    } else {
      print_state(state, json);
    }
    unit.pause(REFRESH_INTERVAL);
  }
}

/// The same on the alternate screen. If the host exits by itself, its last error output is shown afterwards.
void show_on_screen(StartedUnit& unit) {
  unit.mute();
  try {
    const Screen screen;
    show_forever(unit, false, &screen);
  } catch (const CommandEnd& end) {
    if (!end.interrupted) {
      for (const std::string& line : unit.last_errors()) {
        std::fprintf(stderr, "%s\n", line.c_str());
      }
    }
    throw;
  }
}

}  // namespace

void run(const RunOptions& options) {
  const Signals signals;
  StartedUnit unit(options.unit, {options.json ? STDERR_FILENO : STDOUT_FILENO, STDERR_FILENO}, signals);
  if (options.once) {
    print_state(read_unit_state(unit.host(), FIRST_PATIENCE), options.json);
    return;
  }
  try {
    if (!options.json && isatty(STDOUT_FILENO) == 1) {
      show_on_screen(unit);
    } else {
      show_forever(unit, options.json, nullptr);
    }
  } catch (const CommandEnd& end) {
    // A termination signal is this command's normal end.
    if (!end.interrupted) {
      throw;
    }
  }
}

}  // namespace tool
