#include "simulator/settings/nearest_names.h"

#include <gtest/gtest.h>

namespace {

using simulator::settings::nearest_names;
using simulator::settings::suggestion_for;
using Names = std::vector<std::string>;

TEST(NearestNamesTest, AreThoseThatDifferInAFewLetters) {
  EXPECT_EQ(nearest_names("power_supply.temprature"), Names{"power_supply.temperature"});
  EXPECT_EQ(nearest_names("Board.Handle"), Names{"board.handle"});
  EXPECT_EQ(nearest_names("sysfs.celcius"), Names{"sysfs.celsius"});
}

TEST(NearestNamesTest, TheLastPartsAreEnough) {
  EXPECT_EQ(nearest_names("temperature"), Names{"power_supply.temperature"});
  EXPECT_EQ(nearest_names("digital.firmwares"), Names{"board.digital.firmware"});
  EXPECT_EQ(nearest_names("celsius"), (Names{"sysfs.celsius", "faults.file.celsius"}));
}

TEST(NearestNamesTest, AreThreeAtMost) {
  EXPECT_EQ(nearest_names("board.rf.adc_count.9"),
            (Names{"board.rf.adc_count.0", "board.rf.adc_count.1", "board.rf.adc_count.2"}));
}

TEST(NearestNamesTest, ARegistersNumbersHaveNoLeadingZeros) {
  EXPECT_EQ(nearest_names("board.register.007.000"), Names{"board.register.7.0"});
  EXPECT_EQ(nearest_names("board.register.01.00"), Names{"board.register.1.0"});
}

TEST(NearestNamesTest, AreNoneForANameLikeNoOther) {
  for (const std::string& name : Names{"", "x", "7", "colour", "power_supply.colour", std::string(100'000, 'b')}) {
    EXPECT_EQ(nearest_names(name), Names{}) << name.substr(0, 30);
    EXPECT_EQ(suggestion_for(name), "");
  }
}

TEST(NearestNamesTest, AreListedInASuggestion) {
  EXPECT_EQ(suggestion_for("temperature"), "; did you mean \"power_supply.temperature\"?");
  EXPECT_EQ(suggestion_for("celsius"), "; did you mean \"sysfs.celsius\" or \"faults.file.celsius\"?");
  EXPECT_EQ(suggestion_for("board.rf.adc_count.9"),
            "; did you mean \"board.rf.adc_count.0\", \"board.rf.adc_count.1\" or \"board.rf.adc_count.2\"?");
}

}  // namespace
