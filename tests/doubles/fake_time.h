#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

/// The C library's clocks and sleeps, played. Linking this double replaces the functions for what is linked into the
/// program; shared libraries keep the real ones.
namespace doubles {

/// Plays time for the thread that makes it, while it lives: all clocks are one, which moves on by a nanosecond with
/// each reading and by the whole duration with each sleep. Sleeps and timed waits return at once. Other threads keep
/// the real time. One at a time per thread.
class PlayedTime {
public:
  PlayedTime();
  ~PlayedTime();
  PlayedTime(const PlayedTime&) = delete;
  PlayedTime& operator=(const PlayedTime&) = delete;

  /// The `nth` sleep from now on runs `action`.
  PlayedTime& runs_in_sleep(unsigned int nth, std::function<void()> action);

  /// The sleeps asked for so far, rounded to microseconds; giving up the processor counts as a sleep of
  /// a nanosecond.
  std::vector<std::chrono::microseconds> sleeps() const;

  class State;

private:
  std::unique_ptr<State> state_;
};

}  // namespace doubles
