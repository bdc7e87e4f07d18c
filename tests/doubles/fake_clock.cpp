#include "tests/doubles/fake_clock.h"

#include <atomic>
#include <cstdlib>

namespace doubles {

namespace {

constexpr std::time_t RUNNING = -1;
std::atomic<std::time_t> stopped_at{RUNNING};

}  // namespace

StoppedClock::StoppedClock(std::time_t utc_seconds, const std::string& zone) {
  stopped_at = utc_seconds;
  setenv("TZ", zone.c_str(), 1);
  tzset();
}

StoppedClock::~StoppedClock() {
  stopped_at = RUNNING;
  unsetenv("TZ");
  tzset();
}

}  // namespace doubles

extern "C" std::time_t time(std::time_t* seconds) noexcept {
  std::time_t now = doubles::stopped_at;
  if (now == doubles::RUNNING) {
    std::timespec clock{};
    clock_gettime(CLOCK_REALTIME, &clock);
    now = clock.tv_sec;
  }
  if (seconds) {
    *seconds = now;
  }
  return now;
}
