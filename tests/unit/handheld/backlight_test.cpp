#include "tests/doubles/failing_allocation.h"
#include "tests/doubles/fixed_files.h"
#include "tests/unit/handheld/handheld_under_test.h"

namespace {

using doubles::CapturedOutput;
using doubles::FailingAllocation;
using doubles::file_text;
using doubles::put_file;
using doubles::remove_file;
using doubles::sent_events;
using testing::ElementsAre;
using testing::IsEmpty;

const char FOLDER[] = "/sys/class/backlight/omap-bl";
const char MAXIMUM[] = "/sys/class/backlight/omap-bl/max_brightness";
const char BRIGHTNESS[] = "/sys/class/backlight/omap-bl/brightness";

class BacklightTest : public HandheldTest {
protected:
  BacklightTest() {
    remove_file(FOLDER);
    put_file(MAXIMUM, "255\n");
    put_file(BRIGHTNESS, "100\n");
  }
  void expect_no_report() {
    EXPECT_EQ(output_.out() + output_.err(), "");
    EXPECT_THAT(sent_events(), IsEmpty());
  }

  CapturedOutput output_;
};

TEST_F(BacklightTest, TheMaximumIsWrittenWithoutNewline) {
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(BRIGHTNESS), "255");
  expect_no_report();
}

TEST_F(BacklightTest, LongerPreviousContentsAreTruncated) {
  put_file(BRIGHTNESS, "1000000\nand more\n");
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(BRIGHTNESS), "255");
}

TEST_F(BacklightTest, TheMaximumItselfIsLeftAsItWas) {
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(MAXIMUM), "255\n");
}

TEST_F(BacklightTest, WithoutAMaximumZeroIsWrittenAndNothingReported) {
  remove_file(MAXIMUM);
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(BRIGHTNESS), "0");
  expect_no_report();
}

TEST_F(BacklightTest, AnEmptyMaximumWritesZero) {
  put_file(MAXIMUM, "");
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(BRIGHTNESS), "0");
}

TEST_F(BacklightTest, AMaximumWithoutANumberWritesZero) {
  put_file(MAXIMUM, "bright\n");
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(BRIGHTNESS), "0");
}

TEST_F(BacklightTest, AMaximumBeyondThirtyTwoBitsWritesTheLargestNumber) {
  put_file(MAXIMUM, "99999999999\n");
  unit_->setMaxBacklight();
  EXPECT_EQ(file_text(BRIGHTNESS), "2147483647");
}

TEST_F(BacklightTest, AWriteToABrightnessThatCannotBeOpenedIsSilentlyLost) {
  remove_file(BRIGHTNESS);
  put_file(std::string(BRIGHTNESS) + "/not_a_file", "");
  unit_->setMaxBacklight();
  expect_no_report();
}

TEST_F(BacklightTest, GetBacklightReadsTheBrightness) {
  int level = -1;
  EXPECT_EQ(unit_->GetBacklight(level), 1);
  EXPECT_EQ(level, 100);
  expect_no_report();
}

TEST_F(BacklightTest, GetBacklightKeepsASign) {
  put_file(BRIGHTNESS, "-5\n");
  int level = 1;
  EXPECT_EQ(unit_->GetBacklight(level), 1);
  EXPECT_EQ(level, -5);
}

TEST_F(BacklightTest, WithoutABrightnessTheLevelIsZeroAndTheCallSucceeds) {
  remove_file(BRIGHTNESS);
  int level = 77;
  EXPECT_EQ(unit_->GetBacklight(level), 1);
  EXPECT_EQ(level, 0);
  expect_no_report();
}

TEST_F(BacklightTest, ABrightnessWithoutANumberIsLevelZero) {
  for (const char* const text : {"", "\n", "dark\n"}) {
    put_file(BRIGHTNESS, text);
    int level = 77;
    EXPECT_EQ(unit_->GetBacklight(level), 1);
    EXPECT_EQ(level, 0) << text;
  }
}

TEST_F(BacklightTest, EachAllocationThatFailsInGetBacklightIsReportedAndSwallowed) {
  unsigned int nth = 1;
  for (bool failed = true; failed; ++nth) {
    const std::size_t lines = output_.err().size();
    const std::size_t events = sent_events().size();
    int level = 77;
    int result = -1;
    {
      const FailingAllocation failing(nth);
      result = unit_->GetBacklight(level);
      failed = failing.has_failed();
    }
    EXPECT_EQ(result, failed ? 0 : 1);
    EXPECT_EQ(level, failed ? 77 : 100);
    EXPECT_EQ(output_.err().substr(lines), failed ? "Handheld_Hardware::GetBacklight err\n" : "");
    ASSERT_EQ(sent_events().size(), events + (failed ? 1 : 0));
    if (failed) {
      EXPECT_EQ(sent_events().back(),
                failure_event("Handheld_Hardware::GetBacklight()", "/sys/class/backlight/omap-bl/brightness missing"));
    }
  }
  EXPECT_GT(nth, 2U) << "no allocation was made to fail";
  EXPECT_EQ(output_.out(), "");
}

TEST_F(BacklightTest, EachAllocationThatFailsInSetMaxBacklightIsReportedAndSwallowed) {
  unsigned int nth = 1;
  for (bool failed = true; failed; ++nth) {
    const std::size_t lines = output_.err().size();
    const std::size_t events = sent_events().size();
    {
      const FailingAllocation failing(nth);
      EXPECT_NO_THROW(unit_->setMaxBacklight());
      failed = failing.has_failed();
    }
    EXPECT_EQ(output_.err().substr(lines), failed ? "Handheld_Hardware::setMaxBacklight err\n" : "");
    ASSERT_EQ(sent_events().size(), events + (failed ? 1 : 0));
    if (failed) {
      EXPECT_EQ(sent_events().back(),
                failure_event("Handheld_Hardware::setMaxBacklight()",
                              "/sys/class/backlight/omap-bl/max_brightness or brightness missing"));
    }
  }
  EXPECT_GT(nth, 3U) << "two files are opened, and each needs memory";
  EXPECT_EQ(output_.out(), "");
  EXPECT_EQ(file_text(BRIGHTNESS), "255");
}

TEST_F(BacklightTest, TheLineComesBeforeTheEventOfGetBacklight) {
  std::string line_at_send;
  doubles::run_first_in_sends([&] { line_at_send = output_.err(); });
  int level = 0;
  {
    const FailingAllocation failing(1);
    unit_->GetBacklight(level);
  }
  EXPECT_EQ(line_at_send, "Handheld_Hardware::GetBacklight err\n");
}

TEST_F(BacklightTest, TheLineComesBeforeTheEventOfSetMaxBacklight) {
  std::string line_at_send;
  doubles::run_first_in_sends([&] { line_at_send = output_.err(); });
  {
    const FailingAllocation failing(1);
    unit_->setMaxBacklight();
  }
  EXPECT_EQ(line_at_send, "Handheld_Hardware::setMaxBacklight err\n");
}

TEST_F(BacklightTest, AnEventThatCannotBeSentPassesThrough) {
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  int level = 0;
  const FailingAllocation failing(1);
  EXPECT_THROW(unit_->GetBacklight(level), std::runtime_error);
}

}  // namespace
