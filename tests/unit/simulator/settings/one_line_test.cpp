#include "simulator/settings/one_line.h"

#include <gtest/gtest.h>

namespace {

using nlohmann::json;
using simulator::settings::one_line;
using simulator::settings::value_text;

TEST(OneLineTest, OrdinaryTextStaysAsItIs) {
  EXPECT_EQ(one_line(""), "");
  EXPECT_EQ(one_line("38.5 \xC2\xB0\x43 \xF0\x9F\x93\xA1"), "38.5 \xC2\xB0\x43 \xF0\x9F\x93\xA1");
}

TEST(OneLineTest, ControlCharactersAreEscaped) {
  EXPECT_EQ(one_line("a\nb\r\tc"), "a\\nb\\r\\tc");
  EXPECT_EQ(one_line(std::string_view("\0\x1b\x7f", 3)), "\\u0000\\u001b\\u007f");
  EXPECT_EQ(one_line("\xC2\x9B"), "\\u009b");
  EXPECT_EQ(one_line("\xE2\x80\xA8 \xE2\x80\xAE \xE2\x81\xA7 \xEF\xBB\xBF"), "\\u2028 \\u202e \\u2067 \\ufeff");
}

TEST(OneLineTest, BytesThatAreNotUtf8AreEscaped) {
  EXPECT_EQ(one_line("a\xff\xE2\x82"), "a\\xff\\xe2\\x82");
}

TEST(OneLineTest, LongTextIsShortened) {
  EXPECT_EQ(one_line(std::string(60, 'x')), std::string(60, 'x'));
  EXPECT_EQ(one_line(std::string(61, 'x')), std::string(60, 'x') + "...");
  EXPECT_EQ(one_line("abcdef", 3), "abc...");
  EXPECT_EQ(one_line("\xC3\xA4\xC3\xA4\xC3\xA4", 2), "\xC3\xA4\xC3\xA4...");
}

TEST(OneLineTest, AValueIsShownAsJson) {
  EXPECT_EQ(value_text(json("a\nb")), "\"a\\nb\"");
  EXPECT_EQ(value_text(json("a\x7f")), "\"a\\u007f\"");
  EXPECT_EQ(value_text(json::parse(R"({"a":[1,null]})")), R"({"a":[1,null]})");
  EXPECT_EQ(value_text(json::parse("[[[[[[[[[1]]]]]]]]]")), "[...]");
  EXPECT_EQ(value_text(json::parse(R"({"a":[[[[[[[[1]]]]]]]]})")), "{...}");
  EXPECT_EQ(value_text(json::parse("[[[[[[[[1]]]]]]]]")), "[[[[[[[[1]]]]]]]]");
}

}  // namespace
