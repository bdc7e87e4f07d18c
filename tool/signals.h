#pragma once

#include <optional>

namespace tool {

/// The signals that the command looks after while a unit runs: those that end it, and the end of a child process.
/// Made on the main thread before any other thread starts; they are blocked from then on and taken by number here.
class Signals {
public:
  Signals();
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  /// Readable when take() has something to give.
  int descriptor() const noexcept { return descriptor_; }
  /// The next signal that has arrived, none where there is none.
  std::optional<int> take() const;

private:
  int descriptor_;
};

/// The exit status of a command that this signal has ended.
constexpr int status_of_signal(int number) {
  return 128 + number;
}

}  // namespace tool
