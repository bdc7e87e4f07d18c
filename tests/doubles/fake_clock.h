#pragma once

#include <ctime>
#include <string>

/// A fake of the C library's time(). Linking this double replaces the function for the whole program.
namespace doubles {

/// During its lifetime, stops the wall clock and sets the process's time zone. One at a time.
class StoppedClock {
public:
  /// `utc_seconds` since 1970-01-01 00:00 UTC; `zone` as in the environment variable TZ ("UTC0", "EAST-2").
  StoppedClock(std::time_t utc_seconds, const std::string& zone);
  ~StoppedClock();
  StoppedClock(const StoppedClock&) = delete;
  StoppedClock& operator=(const StoppedClock&) = delete;
};

}  // namespace doubles
