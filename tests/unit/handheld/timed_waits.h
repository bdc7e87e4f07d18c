#pragma once

#include <chrono>
#include <functional>

/// The C library's pthread_cond_timedwait(), watched. boost's sleeps end in it.
namespace doubles {

/// Runs `action` before each timed wait that code of this program (not of its libraries) begins while this lives, on
/// the thread that begins it, with the time from now to its deadline. One at a time.
class WatchedTimedWaits {
public:
  explicit WatchedTimedWaits(std::function<void(std::chrono::nanoseconds)> action);
  ~WatchedTimedWaits();
  WatchedTimedWaits(const WatchedTimedWaits&) = delete;
  WatchedTimedWaits& operator=(const WatchedTimedWaits&) = delete;
};

}  // namespace doubles
