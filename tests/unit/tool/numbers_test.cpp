#include "tool/numbers.h"

#include <gtest/gtest.h>

#include "tool/errors.h"

namespace {

using namespace tool;
using std::chrono::milliseconds;

/// The message of the UsageError that `action` throws.
template <typename Action>
std::string refusal(Action action) {
  try {
    action();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(NumbersTest, DecimalAndHexadecimalAreTheOnlyBases) {
  EXPECT_EQ(parse_number("010"), 10);
  EXPECT_EQ(parse_number("0x10"), 16);
  EXPECT_EQ(parse_number("0XfF"), 255);
  EXPECT_EQ(parse_number("-5"), -5);
  EXPECT_EQ(parse_number("+5"), 5);
  EXPECT_EQ(parse_number("9223372036854775807"), INT64_MAX);
}

TEST(NumbersTest, OtherTextsAreNoNumbers) {
  for (const char* text :
       {"", "-", "0x", "1.5", "1e3", " 1", "1 ", "--1", "0x-1", "9223372036854775808", "0b1", "1_0"}) {
    EXPECT_EQ(parse_number(text), std::nullopt) << text;
  }
}

TEST(NumbersTest, ThirtyTwoBitsSignedOrUnsigned) {
  EXPECT_EQ(number_of_32_bits("VALUE", "4294967295"), 4294967295);
  EXPECT_EQ(number_of_32_bits("VALUE", "-2147483648"), -2147483648LL);
  for (const char* text : {"4294967296", "-2147483649", "cover"}) {
    EXPECT_EQ(refusal([&] { number_of_32_bits("VALUE", text); }),
              "VALUE: must be a 32-bit integer such as 256 or 0x100, not \"" + std::string(text) + "\"");
  }
}

TEST(NumbersTest, ANumberOutOfItsRangeIsRefusedWithTheRange) {
  EXPECT_EQ(number_in("SPACE", "3", 0, 3), 3);
  EXPECT_EQ(refusal([] { number_in("SPACE", "4", 0, 3); }),
            "SPACE: must be a whole number from 0 to 3 (decimal or 0x…), not \"4\"");
  EXPECT_EQ(refusal([] { number_in("SPACE", std::string(50, '9'), 0, 3); }),
            "SPACE: must be a whole number from 0 to 3 (decimal or 0x…), not \"" + std::string(39, '9') + "…\"");
}

TEST(NumbersTest, SecondsMayHaveAFraction) {
  EXPECT_EQ(seconds("--timeout", "3"), milliseconds(3000));
  EXPECT_EQ(seconds("--timeout", "0.25"), milliseconds(250));
  for (const char* text : {"0", "-1", "3s", "nan", "inf", "86401", ""}) {
    EXPECT_EQ(refusal([&] { seconds("--timeout", text); }),
              "--timeout: must be seconds from 0.001 to 86400, not \"" + std::string(text) + "\"");
  }
}

TEST(NumbersTest, TimesAreShownInSeconds) {
  EXPECT_EQ(in_seconds(milliseconds(3000)), "3 s");
  EXPECT_EQ(in_seconds(milliseconds(250)), "0.25 s");
}

}  // namespace
