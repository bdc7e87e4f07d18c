#pragma once

#include <termios.h>

#include <string>
#include <vector>

namespace tool {

/// Size of a terminal in characters.
struct TerminalSize {
  int rows = 24;
  int columns = 80;
};

/// The size of the terminal behind the descriptor; 24 x 80 if it has none.
TerminalSize terminal_size(int descriptor);

/// Whether standard input and output are a terminal.
bool has_terminal();

/// Whether a full screen may be drawn on standard output: it is a terminal, TERM is set and not "dumb", and NO_COLOR is
/// unset or empty.
bool can_draw_screen();

/// Puts the terminal behind a descriptor into raw mode: every key reaches the reader at once, none acts here. The
/// destructor restores the mode.
class RawMode {
public:
  explicit RawMode(int descriptor);
  ~RawMode();
  RawMode(const RawMode&) = delete;
  RawMode& operator=(const RawMode&) = delete;

private:
  int descriptor_;
  termios before_{};
};

/// The alternate screen of the terminal on standard output, with a hidden cursor. The destructor gives the terminal
/// back, as does the end of the program by a fatal signal of its own.
class Screen {
public:
  Screen();
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// Replaces the picture. The lines fit the terminal: no more than its rows, none longer than its columns. Throws
  /// CommandError if the terminal has gone.
  void show(const std::vector<std::string>& lines) const;
  /// Gives the terminal back, stops this process as Ctrl-Z does and takes the terminal again when it is continued.
  void suspend() const;
};

}  // namespace tool
