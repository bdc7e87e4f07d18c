#include "tool/text.h"

#include <gtest/gtest.h>

namespace {

using namespace tool;

TEST(TextTest, Utf8IsToldFromOtherBytes) {
  for (const char* text : {"", "plain", "31.01 °C", "漢字", "\xf0\x9f\x9a\x80", "\xf4\x8f\xbf\xbf"}) {
    EXPECT_TRUE(is_utf8(text)) << text;
  }
  for (const char* text : {"\xff", "a\x80", "\xc3", "\xc0\xaf", "\xe0\x80\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80",
                           "\xf0\x80\x80\xaf", "\xf5\x80\x80\x80", "\xe2\x82"}) {
    EXPECT_FALSE(is_utf8(text));
  }
}

TEST(TextTest, ControlCharactersAndInvalidBytesAreEscaped) {
  EXPECT_EQ(printable("a\x1b[31mb\n\tc\x7f"), "a\\x1b[31mb\\n\\tc\\x7f");
  EXPECT_EQ(printable("\xc2\x9b"), "\\xc2\\x9b") << "a C1 control character";
  EXPECT_EQ(printable("\xff°"), "\\xff°");
  EXPECT_EQ(printable_lines("a\n\tb\x1b"), "a\n\tb\\x1b");
}

TEST(TextTest, WidthCountsCharacters) {
  EXPECT_EQ(width("31.01 °C"), 8U);
  EXPECT_EQ(width(""), 0U);
}

TEST(TextTest, ALongTextIsClipped) {
  EXPECT_EQ(clipped("°°°°", 4), "°°°°");
  EXPECT_EQ(clipped("°°°°", 3), "°°…");
  EXPECT_EQ(clipped("abc", 1), "…");
  EXPECT_EQ(clipped("abc", 0), "");
}

TEST(TextTest, AShortTextIsPadded) {
  EXPECT_EQ(padded("°", 3), "°  ");
  EXPECT_EQ(padded("abcd", 3), "abcd");
}

TEST(TextTest, CaseIsLowered) {
  EXPECT_EQ(lower_case("Ok, GO"), "ok, go");
}

}  // namespace
