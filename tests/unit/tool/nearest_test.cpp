#include "tool/nearest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tool;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(NearestTest, DistanceCountsEdits) {
  EXPECT_EQ(edit_distance("status", "status"), 0U);
  EXPECT_EQ(edit_distance("statsu", "status"), 1U) << "neighbours swapped";
  EXPECT_EQ(edit_distance("staus", "status"), 1U);
  EXPECT_EQ(edit_distance("kitten", "sitting"), 3U);
  EXPECT_EQ(edit_distance("", "abc"), 3U);
  EXPECT_EQ(edit_distance("STATUS", "status"), 0U) << "case does not count";
}

TEST(NearestTest, NearNamesComeBestFirst) {
  const std::vector<std::string> names = {"get", "set", "settings", "status", "stop"};
  EXPECT_THAT(nearest("statsu", names), ElementsAre("status"));
  EXPECT_THAT(nearest("gte", names), ElementsAre("get"));
  EXPECT_THAT(nearest("bogus", names), IsEmpty());
}

TEST(NearestTest, TheLastPartOfANameIsEnough) {
  const std::vector<std::string> names = {"board.handle", "power_supply.battery_temperature",
                                          "power_supply.temperature"};
  EXPECT_THAT(nearest("handel", names), ElementsAre("board.handle"));
  EXPECT_THAT(nearest("board.handel", names), ElementsAre("board.handle"));
  EXPECT_THAT(nearest("temperature", names), ElementsAre("power_supply.temperature"));
}

TEST(NearestTest, ANameThatContainsTheWordIsNear) {
  EXPECT_THAT(nearest("battery", {"power_supply.battery_temperature", "board.handle"}),
              ElementsAre("power_supply.battery_temperature"));
}

TEST(NearestTest, TheSuggestionIsOneSentence) {
  EXPECT_EQ(did_you_mean("xet", {"get", "set"}), "; did you mean get or set?");
  EXPECT_EQ(did_you_mean("bogus", {"get", "set"}), "");
}

}  // namespace
