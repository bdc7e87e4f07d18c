#include "handheld/precise_wait.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <boost/thread/thread_time.hpp>

namespace {

using boost::get_system_time;
using boost::posix_time::microseconds;
using handheld::wait_for;

TEST(PreciseWaitTest, TheDurationHasPassedWhenItReturns) {
  for (const int wait : {0, 1, 39, 40, 41, 50, 200, 5000}) {
    const boost::system_time deadline = get_system_time() + microseconds(wait);
    wait_for(microseconds(wait));
    EXPECT_GE(get_system_time(), deadline) << wait;
  }
}

TEST(PreciseWaitTest, ANegativeDurationReturns) {
  wait_for(microseconds(-1000000));
}

TEST(PreciseWaitTest, TheThreadsTimerSlackIsLeftAsItWas) {
  const int kept = prctl(PR_GET_TIMERSLACK);
  prctl(PR_SET_TIMERSLACK, 123456UL);
  wait_for(microseconds(200));
  EXPECT_EQ(prctl(PR_GET_TIMERSLACK), 123456);
  prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(kept));
}

}  // namespace
