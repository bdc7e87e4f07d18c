#pragma once

#include <chrono>
#include <functional>

/// Monitors the C library's pthread_cond_timedwait(), which boost's sleeps call.
namespace doubles {

/// During its lifetime, runs `action` before each timed wait begun by this program's code (not by its libraries), on
/// the waiting thread, with the time from now to its deadline. One at a time.
class WatchedTimedWaits {
public:
  explicit WatchedTimedWaits(std::function<void(std::chrono::nanoseconds)> action);
  ~WatchedTimedWaits();
  WatchedTimedWaits(const WatchedTimedWaits&) = delete;
  WatchedTimedWaits& operator=(const WatchedTimedWaits&) = delete;
};

}  // namespace doubles
