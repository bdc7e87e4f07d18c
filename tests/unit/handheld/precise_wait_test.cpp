#include "handheld/precise_wait.h"

#include <gmock/gmock.h>
#include <sys/prctl.h>

#include <boost/thread/thread_time.hpp>

#include "tests/doubles/fake_time.h"

namespace {

using boost::get_system_time;
using boost::posix_time::microseconds;
using handheld::wait_for;
using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(PreciseWaitTest, TheSleepEndsFortyMicrosecondsBeforeTheDeadline) {
  const doubles::PlayedTime time;
  wait_for(microseconds(5000));
  wait_for(microseconds(50));
  EXPECT_THAT(time.sleeps(), ElementsAre(std::chrono::microseconds(4960), std::chrono::microseconds(10)));
}

TEST(PreciseWaitTest, AWaitOfFortyMicrosecondsIsSpentAwake) {
  const doubles::PlayedTime time;
  wait_for(microseconds(40));
  EXPECT_THAT(time.sleeps(), IsEmpty());
}

TEST(PreciseWaitTest, TheThreadsTimerSlackIsLeftAsItWas) {
  const int kept = prctl(PR_GET_TIMERSLACK);
  prctl(PR_SET_TIMERSLACK, 123456UL);
  wait_for(microseconds(200));
  EXPECT_EQ(prctl(PR_GET_TIMERSLACK), 123456);
  prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(kept));
}

}  // namespace
