#include "handheld/precise_wait.h"

#include <sys/prctl.h>

#include <boost/thread/thread.hpp>

namespace handheld {

namespace {

/// Wake up this long before the deadline: the wake-up latency plus a margin.
const boost::posix_time::microseconds WAKE_UP_TIME(40);

/// By default the kernel may extend a thread's sleep by 50 microseconds; this disables the extension during its
/// lifetime.
class ExactTimers {
public:
  ExactTimers() : slack_ns_(prctl(PR_GET_TIMERSLACK)) { prctl(PR_SET_TIMERSLACK, 1UL); }
  ~ExactTimers() { prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(slack_ns_)); }
  ExactTimers(const ExactTimers&) = delete;
  ExactTimers& operator=(const ExactTimers&) = delete;

private:
  int slack_ns_;
};

}  // namespace

void wait_for(const boost::posix_time::time_duration& duration) {
  const boost::system_time deadline = boost::get_system_time() + duration;
  {
    const ExactTimers exact;
    boost::this_thread::sleep(deadline - WAKE_UP_TIME);
  }
  while (boost::get_system_time() < deadline) {
  }
}

}  // namespace handheld
