#include "simulator/memory/signal.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/doubles/waiting_thread.h"

namespace {

using simulator::memory::Signal;

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Timeout: longer than any test may run.
constexpr std::chrono::hours LONG{1};

TEST(SignalTest, CountsWhatWasRaised) {
  Signal signal;
  EXPECT_EQ(signal.count(), 0U);
  signal.raise();
  signal.raise();
  EXPECT_EQ(signal.count(), 2U);
}

TEST(SignalTest, AWaitForAnOldCountReturnsAtOnce) {
  Signal signal;
  const std::uint32_t seen = signal.count();
  signal.raise();
  signal.wait(seen, LONG);
  EXPECT_NE(signal.count(), seen);
}

TEST(SignalTest, AWaitWithoutRaiseLastsUntilItsLimit) {
  Signal signal;
  const auto begin = Clock::now();
  signal.wait(signal.count(), milliseconds(2));
  EXPECT_GE(Clock::now() - begin, milliseconds(2));
}

TEST(SignalTest, AWaitWhoseLimitHasPassedReturns) {
  Signal signal;
  signal.wait(signal.count(), milliseconds(0));
  signal.wait(signal.count(), milliseconds(-1));
}

TEST(SignalTest, ARaiseWakesEverySleeper) {
  Signal signal;
  const auto sleep = [&signal] { signal.wait(0, LONG); };
  doubles::WaitingThread one(sleep);
  doubles::WaitingThread other(sleep);
  EXPECT_TRUE(one.waits());
  EXPECT_TRUE(other.waits());
  signal.raise();
}

TEST(SignalTest, WaitUntilSeesTheConditionOfAnotherThread) {
  Signal signal;
  std::atomic<int> steps{0};
  std::thread other([&] {
    for (int step = 0; step < 100; ++step) {
      ++steps;
      signal.raise();
    }
  });
  EXPECT_TRUE(signal.wait_until([&] { return steps == 100; }, LONG));
  other.join();
}

TEST(SignalTest, WaitUntilGivesUpAfterItsLimit) {
  Signal signal;
  const auto begin = Clock::now();
  EXPECT_FALSE(signal.wait_until([] { return false; }, milliseconds(2)));
  EXPECT_GE(Clock::now() - begin, milliseconds(2));
  EXPECT_TRUE(signal.wait_until([] { return true; }, milliseconds(0)));
}

TEST(SignalTest, WaitUntilTakesTheLongestLimit) {
  Signal signal;
  EXPECT_TRUE(signal.wait_until([] { return true; }, std::chrono::nanoseconds::max()));
}

}  // namespace
