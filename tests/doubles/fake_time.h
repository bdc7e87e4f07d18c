#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

/// Fakes of the C library's clocks and sleeps. Linking this double replaces the functions for the code linked into the
/// program; shared libraries keep the real ones.
namespace doubles {

/// Fakes time for the thread that makes it, during its lifetime: all clocks are the same clock, which advances by a
/// nanosecond with each reading and by the whole duration with each sleep. Sleeps and timed waits return at once. Other
/// threads keep the real time. One at a time per thread.
class PlayedTime {
public:
  PlayedTime();
  ~PlayedTime();
  PlayedTime(const PlayedTime&) = delete;
  PlayedTime& operator=(const PlayedTime&) = delete;

  /// The `nth` sleep from now on runs `action`.
  PlayedTime& runs_in_sleep(unsigned int nth, std::function<void()> action);

  /// The sleeps requested so far, rounded to microseconds; yielding the processor counts as a sleep of one nanosecond.
  std::vector<std::chrono::microseconds> sleeps() const;

  class State;

private:
  std::unique_ptr<State> state_;
};

}  // namespace doubles
