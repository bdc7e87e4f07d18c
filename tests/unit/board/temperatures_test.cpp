#include <cmath>

#include "tests/unit/board/unit_under_test.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using testing::ElementsAre;

constexpr unsigned int CONTROL = 131076;

class BoardTemperaturesTest : public UnitTest {
protected:
  BoardTemperaturesTest() { board_.holds(1, 248, 1); }
};

/// A unit whose ADC returns a preset value.
class UnitWithAdc : public HARDWARE {
public:
  unsigned int get_RFAdc(unsigned int channel) override {
    asked_channel = channel;
    return raw;
  }
  unsigned int raw = 0;
  unsigned int asked_channel = 99;
};

class RfTempTest : public UnitTest {
protected:
  RfTempTest() {
    const CapturedOutput unheard;
    adc_unit_ = std::make_unique<UnitWithAdc>();
  }
  TEMPERATUREDATA row_of(unsigned int raw) {
    adc_unit_->raw = raw;
    return adc_unit_->rftemp();
  }
  void expect_valid(unsigned int raw, int kelvin_hundredths) {
    const TEMPERATUREDATA row = row_of(raw);
    EXPECT_EQ(row.name, "RF Temperature") << raw;
    EXPECT_EQ(row.temperature, static_cast<float>(kelvin_hundredths) / 100.0F - 273.15F) << raw;
  }
  void expect_invalid(unsigned int raw) {
    const TEMPERATUREDATA row = row_of(raw);
    EXPECT_EQ(row.name, "RF Temperature Off (Temp Invalid!)") << raw;
    EXPECT_EQ(row.temperature, 0.0F) << raw;
    EXPECT_FALSE(std::signbit(row.temperature)) << raw;
  }

  std::unique_ptr<UnitWithAdc> adc_unit_;
};

TEST_F(BoardTemperaturesTest, AConversionWithTheControlBitClearSelectsTwiceAndReadsOnce) {
  board_.holds(1, 196, 8191).holds(1, CONTROL, 0xFFFFFFFE);
  unit_->get_RFAdc(3);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "read 1 131076", "read 1 248", "write 1 196 12288",
                                         "write 1 196 12288", "write 1 252 196", "read 1 252", "read 1 196", "unlock"));
  EXPECT_EQ(board_.contents(1, CONTROL), 0xFFFFFFFEU);
}

TEST_F(BoardTemperaturesTest, AConversionWithTheControlBitSetClearsAndRestoresItThreeTimes) {
  board_.holds(1, CONTROL, 0x80000003);
  unit_->get_RFAdc(2);
  EXPECT_THAT(calls().all(),
              ElementsAre("lock", "read 1 131076", "read 1 248",                                         //
                          "write 1 131076 2147483650", "write 1 196 8192", "write 1 131076 2147483651",  //
                          "write 1 131076 2147483650", "write 1 196 8192", "write 1 131076 2147483651",  //
                          "write 1 131076 2147483650", "write 1 252 196", "read 1 252", "read 1 196",    //
                          "write 1 131076 2147483651", "unlock"));
  EXPECT_EQ(board_.contents(1, CONTROL), 0x80000003U);
}

TEST_F(BoardTemperaturesTest, TwoHundredMicrosecondsPassAfterEachSelectionAndFiftyAfterTheRequest) {
  unit_->get_RFAdc(3);
  const auto times = board_.access_times();
  ASSERT_EQ(times.size(), 7U);
  using std::chrono::microseconds;
  // The wait ends on a clock that counts whole microseconds, so it may be up to one microsecond short.
  const microseconds step(1);
  EXPECT_GE(times[3] - times[2], microseconds(200) - step) << "from the first selection to the second";
  EXPECT_GE(times[4] - times[3], microseconds(200) - step) << "from the second selection to the request";
  EXPECT_GE(times[5] - times[4], microseconds(50) - step) << "from the request to its status";
}

TEST_F(BoardTemperaturesTest, TheResultIsTheWholeRfRegister) {
  board_.reads_next(1, 196, {0xFFFFC123});
  EXPECT_EQ(unit_->get_RFAdc(0), 0xFFFFC123U);
}

TEST_F(BoardTemperaturesTest, WithoutAnRfAdcTheResultIsZeroAndNoOtherRegisterIsTouched) {
  board_.holds(1, 248, 0xFFFFFFFE).holds(1, CONTROL, 1).holds(1, 196, 8191);
  EXPECT_EQ(unit_->get_RFAdc(2), 0U);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "read 1 131076", "read 1 248", "unlock"));
}

TEST_F(BoardTemperaturesTest, ATransferThatTimesOutGivesZeroAndStillRestoresTheControlRegister) {
  board_.holds(1, CONTROL, 1).holds(1, 196, 8191).transfer_never_ends();
  const CapturedOutput output;
  EXPECT_EQ(unit_->get_RFAdc(2), 0U);
  const Calls all = calls().all();
  ASSERT_GE(all.size(), 2U);
  EXPECT_EQ(all[all.size() - 2], "write 1 131076 1");
  EXPECT_EQ(all.back(), "unlock");
  EXPECT_EQ(output.out() + output.err(), "");
}

/// A channel and the value written to select it.
struct Selection {
  unsigned int channel;
  const char* write;
};

void PrintTo(const Selection& selection, std::ostream* stream) {
  *stream << "channel " << selection.channel << " is \"" << selection.write << '"';
}

class SelectionTest : public BoardTemperaturesTest, public testing::WithParamInterface<Selection> {};

TEST_P(SelectionTest, OnlyTheLowThreeBitsOfTheChannelCount) {
  unit_->get_RFAdc(GetParam().channel);
  EXPECT_EQ(calls().count(GetParam().write), 2U);
  EXPECT_EQ(calls().starting_with("write 1 196").size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Channels, SelectionTest,
                         testing::Values(Selection{0, "write 1 196 0"}, Selection{2, "write 1 196 8192"},
                                         Selection{7, "write 1 196 28672"}, Selection{10, "write 1 196 8192"},
                                         Selection{8, "write 1 196 0"}, Selection{0xFFFFFFFF, "write 1 196 28672"}),
                         [](const auto& selection) { return "Channel" + std::to_string(selection.param.channel); });

TEST_F(BoardTemperaturesTest, ALockThatFailsDoesNotStopTheConversionNorItsUnlock) {
  board_.reads_next(1, 196, {8191}).lock_fails(-35).unlock_fails(-1);
  const CapturedOutput output;
  EXPECT_EQ(unit_->get_RFAdc(2), 8191U);
  EXPECT_EQ(calls().all().front(), "lock");
  EXPECT_EQ(calls().all().back(), "unlock");
  EXPECT_EQ(output.out(), "SysLockfail -35\nSysUnlockfail -1\n");
  EXPECT_EQ(output.err(), "");
}

TEST_F(RfTempTest, ChannelTwoIsAskedThroughTheVirtualOperation) {
  row_of(8191);
  EXPECT_EQ(adc_unit_->asked_channel, 2U);
}

TEST_F(RfTempTest, TheLockIsLeftToTheConversion) {
  calls().clear();
  row_of(8191);
  EXPECT_EQ(calls().all(), Calls());
  unit_->rftemp();
  EXPECT_EQ(calls().count("lock"), 1U);
  EXPECT_EQ(calls().count("unlock"), 1U);
}

TEST_F(RfTempTest, RawZeroIsFiftyBelowAndInvalid) {
  expect_invalid(0);
}

TEST_F(RfTempTest, RawOneIsTheFirstValidCount) {
  expect_valid(1, 22317);
}

TEST_F(RfTempTest, Raw8191IsValid) {
  expect_valid(8191, 22315 + 19999);
  EXPECT_NEAR(row_of(8191).temperature, 149.99F, 0.001F);
}

TEST_F(RfTempTest, Raw8192IsTheLastValidCount) {
  expect_valid(8192, 42316);
  EXPECT_NEAR(row_of(8192).temperature, 150.01F, 0.001F);
}

TEST_F(RfTempTest, Raw8193IsInvalid) {
  expect_invalid(8193);
}

TEST_F(RfTempTest, FullScaleIsInvalid) {
  expect_invalid(16383);
}

TEST_F(RfTempTest, RoomTemperatureIsRoundedToTheNearestHundredthOfAKelvin) {
  expect_valid(2925, 22315 + 7142);
}

TEST_F(RfTempTest, ACountBeyondFullScaleWrapsInThirtyTwoBits) {
  expect_valid(107375, 22317);
}

TEST_F(RfTempTest, TheLowestValidTemperatureIsJustAboveItsBound) {
  expect_valid(322123, 22316);
}

TEST_F(RfTempTest, TheFloatNextToTheUpperBoundIsInvalid) {
  expect_invalid(330315);
}

TEST_F(RfTempTest, AUnitWithoutAnRfBoardReportsTheInvalidRow) {
  const TEMPERATUREDATA row = unit_->rftemp();
  EXPECT_EQ(row.name, "RF Temperature Off (Temp Invalid!)");
  EXPECT_EQ(row.temperature, 0.0F);
}

TEST_F(BoardTemperaturesTest, TheDigitalBoardIsReadUnderTheLock) {
  board_.holds(1, 40, 70);
  EXPECT_EQ(unit_->getDigitalBoardTemp(0.5F), 35.0F);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "read 1 40", "unlock"));
}

TEST_F(BoardTemperaturesTest, TheDigitalBoardsCountIsUnsigned) {
  board_.holds(1, 40, 0x80000000);
  EXPECT_EQ(unit_->getDigitalBoardTemp(1.0F), 2147483648.0F);
}

TEST_F(BoardTemperaturesTest, AFailedLockDoesNotStopTheDigitalBoardsMeasurement) {
  board_.holds(1, 40, 100).lock_fails(5).unlock_fails(6);
  const CapturedOutput output;
  EXPECT_EQ(unit_->getDigitalBoardTemp(0.25F), 25.0F);
  EXPECT_THAT(calls().all(), ElementsAre("lock", "read 1 40", "unlock"));
  EXPECT_EQ(output.out(), "SysLockfail 5\nSysUnlockfail 6\n");
}

}  // namespace
