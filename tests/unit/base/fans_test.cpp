#include <gmock/gmock.h>

#include <sstream>

#include "tests/doubles/failing_allocation.h"
#include "tests/doubles/hexadecimal_streams.h"
#include "tests/unit/base/plain_hardware.h"

namespace {

using doubles::CapturedOutput;

std::string pointer_text(const void* pointer) {
  std::ostringstream stream;
  stream << pointer;
  return stream.str();
}

TEST(FansTest, ConstructionPrintsTheObjectsOwnAddress) {
  const CapturedOutput output;
  const PlainHardware unit(2);
  const BASE_HARDWARE* const address = &unit;
  EXPECT_EQ(output.out(), "BASE_HARDWARE::BASE_HARDWARE1 " + pointer_text(address) + "\n");
  EXPECT_EQ(output.err(), "");
}

TEST(FansTest, FanCountZeroMakesAnEmptyList) {
  EXPECT_EQ(quiet_unit(0).fan_count(), 0U);
}

TEST(FansTest, ANegativeFanCountMakesAnEmptyList) {
  EXPECT_EQ(quiet_unit(-3).fan_count(), 0U);
}

TEST(FansTest, FanCountOneMakesOneFan) {
  EXPECT_EQ(quiet_unit(1).fan_count(), 1U);
}

TEST(FansTest, EveryFanStartsUnknown) {
  PlainHardware unit = quiet_unit(5);
  const CapturedOutput output;
  ASSERT_EQ(unit.fan_count(), 5U);
  for (unsigned int fan = 0; fan < 5; ++fan) {
    EXPECT_EQ(static_cast<int>(unit.GetFanState(fan)), 4) << fan;
  }
}

TEST(FansTest, TheLastFanIsAnsweredWithoutTheErrorLine) {
  PlainHardware unit = quiet_unit(5);
  const CapturedOutput output;
  EXPECT_EQ(static_cast<int>(unit.GetFanState(4)), 4);
  EXPECT_EQ(output.out(), "BASE_HARDWARE::GetFanState 4\n");
  EXPECT_EQ(output.err(), "");
}

TEST(FansTest, OneBeyondTheLastFanIsUnknownWithTheErrorLine) {
  PlainHardware unit = quiet_unit(5);
  const CapturedOutput output;
  EXPECT_EQ(static_cast<int>(unit.GetFanState(5)), 4);
  EXPECT_EQ(output.out(), "BASE_HARDWARE::GetFanState 5\n");
  EXPECT_EQ(output.err(), "BASE_HARDWARE::GetFanState index err\n");
}

class FansOfAUnitWithoutFansTest : public testing::TestWithParam<int> {};

TEST_P(FansOfAUnitWithoutFansTest, FanZeroIsUnknownAndPrintsBothLines) {
  PlainHardware unit = quiet_unit(GetParam());
  const CapturedOutput output;
  EXPECT_EQ(static_cast<int>(unit.GetFanState(0)), 4);
  EXPECT_EQ(output.out(), "BASE_HARDWARE::GetFanState 0\n");
  EXPECT_EQ(output.err(), "BASE_HARDWARE::GetFanState index err\n");
}

INSTANTIATE_TEST_SUITE_P(Counts, FansOfAUnitWithoutFansTest, testing::Values(0, -3));

TEST(FansTest, TheIndexIsUnsignedAndPrintedSo) {
  PlainHardware unit = quiet_unit(1);
  const CapturedOutput output;
  EXPECT_EQ(static_cast<int>(unit.GetFanState(4294967295U)), 4);
  EXPECT_EQ(output.out(), "BASE_HARDWARE::GetFanState 4294967295\n");
  EXPECT_EQ(output.err(), "BASE_HARDWARE::GetFanState index err\n");
}

TEST(FansTest, TheIndexIsDecimalWhateverTheHostHasLeftOnTheStream) {
  PlainHardware unit = quiet_unit(11);
  const CapturedOutput output;
  const doubles::HexadecimalStreams left;
  unit.GetFanState(10);
  EXPECT_EQ(output.out(), "BASE_HARDWARE::GetFanState 10\n");
}

TEST(FansTest, SetFanStateOnlyPrints) {
  PlainHardware unit = quiet_unit(1);
  const CapturedOutput output;
  EXPECT_EQ(unit.SetFanState(0, BASE_HARDWARE::FAN_STATE_1), 0);
  EXPECT_EQ(output.err(), "BASE_HARDWARE::SetFanState err\n");
  EXPECT_EQ(output.out(), "");
  EXPECT_EQ(static_cast<int>(unit.GetFanState(0)), 4);
}

TEST(FansTest, GetFanStatesListLeavesBothItsRecordsAsTheyWere) {
  PlainHardware unit = quiet_unit();
  std::vector<FANDATA> list{{1, 2, "left"}, {3, 4, "right"}};
  const CapturedOutput output;
  EXPECT_EQ(unit.GetFanStatesList(list), 0);
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0].word1, 1U);
  EXPECT_EQ(list[0].word2, 2U);
  EXPECT_EQ(list[0].name, "left");
  EXPECT_EQ(list[1].word1, 3U);
  EXPECT_EQ(list[1].word2, 4U);
  EXPECT_EQ(list[1].name, "right");
  EXPECT_EQ(output.err(), "BASE_HARDWARE::GetFanStatesList err\n");
  EXPECT_EQ(output.out(), "");
}

TEST(FansTest, GetFansListLeavesTheListAlone) {
  PlainHardware unit = quiet_unit();
  std::vector<FANDATA> list{{1, 2, "left"}};
  const CapturedOutput output;
  EXPECT_EQ(unit.GetFansList(list), 0);
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(output.err(), "BASE_HARDWARE::GetFansList err\n");
  EXPECT_EQ(output.out(), "");
}

TEST(FansTest, AdjustFanSpeedsOnlyPrints) {
  PlainHardware unit = quiet_unit();
  std::vector<FANDATA> list{{1, 2, "left"}};
  const CapturedOutput output;
  unit.AdjustFanSpeeds(list);
  EXPECT_EQ(list.size(), 1U);
  EXPECT_EQ(output.err(), "BASE_HARDWARE::AdjustFanSpeeds err\n");
  EXPECT_EQ(output.out(), "");
}

TEST(FansTest, ConstructionPrintsItsLineBeforeItFillsTheList) {
  const CapturedOutput output;
  {
    const doubles::FailingAllocation failing(1, sizeof(BASE_HARDWARE::FAN_STATES));
    EXPECT_THROW(PlainHardware(1), std::bad_alloc);
  }
  EXPECT_EQ(output.out().rfind("BASE_HARDWARE::BASE_HARDWARE1 0x", 0), 0U) << output.out();
}

TEST(FansTest, AnAllocationThatFailsWhileTheListIsFilledLeavesTheConstructorAndLeavesNothingBehind) {
  const CapturedOutput unheard;
  const long before = doubles::living_allocations();
  for (const unsigned int nth : {1U, 2U, 3U}) {
    const doubles::FailingAllocation failing(nth);
    EXPECT_THROW(PlainHardware(5), std::bad_alloc) << "allocation " << nth;
    EXPECT_TRUE(failing.has_failed());
  }
  EXPECT_EQ(doubles::living_allocations(), before);
}

}  // namespace
