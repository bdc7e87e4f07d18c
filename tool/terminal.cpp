#include "tool/terminal.h"

#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <system_error>

#include "tool/output.h"

namespace tool {
namespace {

// Alternate screen, no cursor, no automatic line wrap; and back.
constexpr std::string_view TAKE = "\x1b[?1049h\x1b[?25l\x1b[?7l";
constexpr std::string_view GIVE_BACK = "\x1b[?7h\x1b[?25h\x1b[?1049l";
constexpr int FATAL_SIGNALS[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

/// Signal-safe.
void give_back() {
  // A terminal that has gone needs nothing back.
  [[maybe_unused]] const ssize_t size = write(STDOUT_FILENO, GIVE_BACK.data(), GIVE_BACK.size());
}

extern "C" void give_back_and_die(int number) {
  give_back();
  signal(number, SIG_DFL);
  raise(number);
}

void on_fatal_signals(void (*handler)(int)) {
  for (const int number : FATAL_SIGNALS) {
    signal(number, handler);
  }
}

}  // namespace

TerminalSize terminal_size(int descriptor) {
  winsize size{};
  TerminalSize result;
  if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
    result = {size.ws_row, size.ws_col};
  }
  return result;
}

bool has_terminal() {
  return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
}

bool can_draw_screen() {
  const char* const term = std::getenv("TERM");
  const char* const no_color = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && term != nullptr && *term != '\0' && std::strcmp(term, "dumb") != 0 &&
         (no_color == nullptr || *no_color == '\0');
}

RawMode::RawMode(int descriptor) : descriptor_(descriptor) {
  if (tcgetattr(descriptor_, &before_) != 0) {
    throw std::system_error(errno, std::generic_category(), "terminal");
  }
  termios raw = before_;
  cfmakeraw(&raw);
  tcsetattr(descriptor_, TCSADRAIN, &raw);
}

RawMode::~RawMode() {
  tcsetattr(descriptor_, TCSADRAIN, &before_);
}

Screen::Screen() {
  on_fatal_signals(give_back_and_die);
  write_all(STDOUT_FILENO, TAKE, "standard output");
}

Screen::~Screen() {
  give_back();
  on_fatal_signals(SIG_DFL);
}

void Screen::show(const std::vector<std::string>& lines) const {
  std::string text = "\x1b[H";
  for (std::size_t i = 0; i < lines.size(); ++i) {
    text += std::string(i == 0 ? "" : "\r\n") + "\x1b[K" + lines[i];
  }
  write_all(STDOUT_FILENO, text + "\x1b[J", "standard output");
}

void Screen::suspend() const {
  give_back();
  raise(SIGSTOP);
  write_all(STDOUT_FILENO, TAKE, "standard output");
}

}  // namespace tool
