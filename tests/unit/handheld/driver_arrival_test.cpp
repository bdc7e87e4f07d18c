#include "handheld/driver_arrival.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

#include "tests/unit/handheld/timed_waits.h"

namespace {

using handheld::DriverArrival;

/// Waits on this thread and runs `action` at the `nth` poll. Returns the number of polls, or 0 if the driver was not
/// made.
unsigned int looks_until_arrival(const DriverArrival& arrival, unsigned int nth, const std::function<void()>& action) {
  const std::thread::id waiting = std::this_thread::get_id();
  unsigned int looks = 0;
  const doubles::WatchedTimedWaits watched([&](std::chrono::nanoseconds) {
    if (std::this_thread::get_id() == waiting && ++looks == nth) {
      action();
    }
  });
  return arrival.wait() ? looks : 0;
}

TEST(DriverArrivalTest, ADriverThatIsThereIsNotWaitedFor) {
  DriverArrival arrival;
  arrival.expect();
  arrival.announce();
  EXPECT_EQ(looks_until_arrival(arrival, 1, [] { FAIL() << "a wait began"; }), 0U);
  EXPECT_TRUE(arrival.wait());
}

TEST(DriverArrivalTest, TheWaitEndsAtTheFirstLookThatSeesTheDriver) {
  DriverArrival arrival;
  arrival.expect();
  EXPECT_EQ(looks_until_arrival(arrival, 5, [&] { arrival.announce(); }), 5U);
}

TEST(DriverArrivalTest, EachLookIsWithinAMillisecondOfTheOneBefore) {
  DriverArrival arrival;
  std::vector<std::chrono::nanoseconds> waits;
  const doubles::WatchedTimedWaits watched([&](std::chrono::nanoseconds wait) {
    waits.push_back(wait);
    if (waits.size() == 5) {
      arrival.announce();
    }
  });
  EXPECT_TRUE(arrival.wait());
  EXPECT_THAT(waits, testing::Each(testing::Le(std::chrono::milliseconds(1))));
}

TEST(DriverArrivalTest, GivingUpEndsAWaitWithoutADriver) {
  DriverArrival arrival;
  arrival.expect();
  unsigned int gave_up = 0;
  EXPECT_EQ(looks_until_arrival(arrival, 3,
                                [&] {
                                  arrival.give_up();
                                  ++gave_up;
                                }),
            0U);
  EXPECT_EQ(gave_up, 1U);
  EXPECT_FALSE(arrival.wait()) << "nor does a later wait begin";
}

TEST(DriverArrivalTest, TheNextConstructionIsWaitedForAgain) {
  DriverArrival arrival;
  arrival.expect();
  arrival.give_up();
  arrival.expect();
  EXPECT_EQ(looks_until_arrival(arrival, 2, [&] { arrival.announce(); }), 2U);
}

TEST(DriverArrivalTest, AnEarlierDriverStaysWhenALaterConstructionIsGivenUp) {
  DriverArrival arrival;
  arrival.expect();
  arrival.announce();
  arrival.expect();
  EXPECT_TRUE(arrival.wait());
  arrival.give_up();
  EXPECT_TRUE(arrival.wait());
}

}  // namespace
