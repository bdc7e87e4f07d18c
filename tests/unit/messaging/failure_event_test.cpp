#include "messaging/failure_event.h"

#include <gmock/gmock.h>

#include "tests/doubles/captured_output.h"
#include "tests/doubles/fake_clock.h"
#include "tests/doubles/fake_varnok.h"

namespace {

using doubles::sent_events;
using doubles::SentEvent;
using doubles::StoppedClock;
using testing::ElementsAre;
using testing::IsEmpty;

/// 2010-05-30 12:00:00, counted as UTC.
constexpr std::time_t NOON = 1275220800;

class FailureEventTest : public testing::Test {
protected:
  FailureEventTest() {
    doubles::reset_framework();
    doubles::calls().clear();
  }
  std::int64_t stamp() {
    messaging::send_failure_event(channel_, "source", "text");
    return sent_events().back().timestamp;
  }

  Varnok::EngineEventMessage_i channel_;
};

TEST_F(FailureEventTest, CarriesTheSameNumbersEveryTime) {
  const StoppedClock clock(NOON, "UTC0");
  const doubles::CapturedOutput output;
  messaging::send_failure_event(channel_, "Class::operation()", "Power Supply Driver Failure: Something");
  messaging::send_failure_event(channel_, "", "");
  EXPECT_THAT(sent_events(), ElementsAre(SentEvent{"Class::operation()", 3, "Power Supply Driver Failure: Something", 3,
                                                   65536, 0, NOON, &channel_},
                                         SentEvent{"", 3, "", 3, 65536, 0, NOON, &channel_}));
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(FailureEventTest, GoesThroughTheChannelGiven) {
  Varnok::EngineEventMessage_i other;
  messaging::send_failure_event(other, "source", "text");
  ASSERT_EQ(sent_events().size(), 1U);
  EXPECT_EQ(sent_events()[0].channel, &other);
}

TEST_F(FailureEventTest, AtNoonLocalTimeItCarriesTheSecondsOfNoonCountedAsUtc) {
  {
    const StoppedClock east(NOON - 2 * 3600, "EAST-2");
    EXPECT_EQ(stamp(), NOON);
  }
  {
    const StoppedClock west(NOON + 5 * 3600, "WEST5");
    EXPECT_EQ(stamp(), NOON);
  }
  {
    const StoppedClock half_an_hour(NOON - (5 * 3600 + 1800), "HALF-5:30");
    EXPECT_EQ(stamp(), NOON);
  }
}

TEST_F(FailureEventTest, SummerTimeCountsAsLocalTime) {
  const char* const zone = "CET-1CEST,M3.5.0,M10.5.0/3";
  {
    const StoppedClock summer(NOON, zone);
    EXPECT_EQ(stamp(), NOON + 2 * 3600);
  }
  {
    const StoppedClock winter(NOON - 150 * 86400L, zone);
    EXPECT_EQ(stamp(), NOON - 150 * 86400L + 3600);
  }
}

TEST_F(FailureEventTest, TheStampIsCutToThirtyTwoBitsAndItsSignExtended) {
  {
    const StoppedClock last(2147483647, "UTC0");
    EXPECT_EQ(stamp(), 2147483647);
  }
  {
    const StoppedClock one_later(2147483648L, "UTC0");
    EXPECT_EQ(stamp(), -2147483648L);
  }
}

TEST_F(FailureEventTest, AnExceptionOfTheChannelPassesThrough) {
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  EXPECT_THROW(messaging::send_failure_event(channel_, "source", "text"), std::runtime_error);
  EXPECT_THAT(sent_events(), IsEmpty());
  EXPECT_EQ(doubles::calls().count("event source"), 1U) << "no second try";
}

}  // namespace
