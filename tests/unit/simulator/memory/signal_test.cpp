#include "simulator/memory/signal.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using simulator::memory::Signal;

constexpr std::chrono::seconds LONG{60};

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

TEST(SignalTest, AWaitWithoutRaiseEndsWithItsLimit) {
  Signal signal;
  signal.wait(signal.count(), std::chrono::milliseconds(1));
  signal.wait(signal.count(), std::chrono::milliseconds(-1));
  EXPECT_EQ(signal.count(), 0U);
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
  EXPECT_FALSE(signal.wait_until([] { return false; }, std::chrono::milliseconds(2)));
  EXPECT_TRUE(signal.wait_until([] { return true; }, std::chrono::milliseconds(0)));
}

TEST(SignalTest, WaitUntilTakesTheLongestLimit) {
  Signal signal;
  EXPECT_TRUE(signal.wait_until([] { return true; }, std::chrono::nanoseconds::max()));
}

}  // namespace
