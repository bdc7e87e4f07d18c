#include "tests/unit/handheld/handheld_under_test.h"
#include "tests/unit/handheld/user_interface.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::sent_events;
using testing::ElementsAre;
using testing::IsEmpty;

const char LED_CALL[] = "SetSystemLEDStatus 12 0";

class UiDoneLoadingTest : public HandheldTest {};

TEST_F(UiDoneLoadingTest, SetsTheLedToTwelve) {
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL));
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(UiDoneLoadingTest, ASecondMessageSetsTheLedAgain) {
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL, LED_CALL));
}

TEST_F(UiDoneLoadingTest, TheTopicNameIsNotLookedAt) {
  unit_->UIDoneLoadingDDS_SubCallback(nullptr);
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL));
}

TEST_F(UiDoneLoadingTest, ADriverFailureIsOneEventAndNoRetry) {
  driver_.fails("SetSystemLEDStatus");
  const CapturedOutput output;
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL, "event Handheld_Hardware::UIDoneLoadingDDS_SubCallback()"));
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::UIDoneLoadingDDS_SubCallback()",
                                                       "Power Supply Driver Failure: UI Done Loading")));
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(UiDoneLoadingTest, AnotherExceptionPassesThrough) {
  driver_.runs_first("SetSystemLEDStatus", [] { throw std::out_of_range("led"); });
  EXPECT_THROW(unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading"), std::out_of_range);
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(UiDoneLoadingTest, AnEventThatCannotBeSentPassesThrough) {
  driver_.fails("SetSystemLEDStatus");
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  EXPECT_THROW(unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading"), std::runtime_error);
}

TEST_F(UiDoneLoadingTest, EachMessageOnTheTopicSetsTheLedOnce) {
  UserInterface user_interface;
  user_interface.wait_for_listener();
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for(LED_CALL, 1));
  user_interface.done_loading();
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for(LED_CALL, 3));
  unit_.reset();
  EXPECT_EQ(calls().count(LED_CALL), 3U);
}

TEST_F(UiDoneLoadingTest, ADriverFailureOnOneMessageLeavesTheNextToSetTheLed) {
  driver_.fails("SetSystemLEDStatus");
  UserInterface user_interface;
  user_interface.wait_for_listener();
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for("event Handheld_Hardware::UIDoneLoadingDDS_SubCallback()"));
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for(LED_CALL, 2));
  unit_.reset();
  EXPECT_EQ(sent_events().size(), 1U);
}

}  // namespace
