#include "simulator/settings/json_input.h"

#include <gtest/gtest.h>

namespace {

using simulator::settings::JsonError;
using simulator::settings::parsed_json;

std::string refusal(const std::string& text) {
  try {
    parsed_json(text);
  } catch (const JsonError& error) {
    return error.what();
  }
  return "taken";
}

TEST(JsonInputTest, ParsesOneDocument) {
  EXPECT_EQ(parsed_json(" {\"a\": [1, -2.5e3, \"\\u00e4\\\"]\", null, true]}\n").dump(),
            "{\"a\":[1,-2500.0,\"\xC3\xA4\\\"]\",null,true]}");
  EXPECT_EQ(parsed_json("5"), 5);
  EXPECT_EQ(refusal("{} {}"),
            "line 1, column 4: syntax error while parsing value - unexpected '{'; expected end of "
            "input");
}

TEST(JsonInputTest, NestingIsBoundedOutsideOfStrings) {
  const std::string open(64, '[');
  const std::string close(64, ']');
  EXPECT_EQ(refusal(open + close), "taken");
  EXPECT_EQ(refusal("[" + open + close + "]"), "line 1, column 65: nested more than 64 deep");
  EXPECT_EQ(refusal("[\"" + open + "\", \"\\\"" + open + "\"]"), "taken");
  EXPECT_EQ(refusal("[[]" + std::string(",[]").append(",[[]]") + "]"), "taken");
}

TEST(JsonInputTest, BytesAreCheckedBeforeTheParserSeesThem) {
  EXPECT_EQ(refusal(std::string("5\0", 2)), "line 1, column 2: NUL byte");
  EXPECT_EQ(refusal(std::string("\"\\\0\"", 4)), "line 1, column 3: NUL byte");
  EXPECT_EQ(refusal("\"\\\xff\""), "line 1, column 3: byte that is not UTF-8");
  EXPECT_EQ(refusal("[\n\n  \xC0\xAF]"), "line 3, column 3: byte that is not UTF-8");
}

TEST(JsonInputTest, NumbersFitADouble) {
  EXPECT_EQ(refusal("[1, -1e400]"), "line 1, column 5: number too large: -1e400");
  EXPECT_EQ(refusal(std::string(400, '9')), "line 1, column 1: number too large: " + std::string(60, '9') + "...");
  EXPECT_EQ(refusal("[\"1e400\", 1e308]"), "taken");
}

TEST(JsonInputTest, AKeyIsGivenOnce) {
  EXPECT_EQ(refusal(R"({"a": {"b": 1, "b": 2}})"), "a.b: given twice");
  EXPECT_EQ(refusal(R"({"a": 1, "\u0061": 2})"), "a: given twice");
  EXPECT_EQ(refusal(R"({"a": {"b": 1}, "c": {"b": 2}})"), "taken");
  EXPECT_EQ(refusal(R"([{"a": 1}, {"a": 2}])"), "taken");
}

TEST(JsonInputTest, WhatTheParserQuotesIsShort) {
  const std::string reason = refusal("\"" + std::string(5000, 'x'));
  EXPECT_EQ(reason,
            "line 1, column 5002: syntax error while parsing value - invalid string: missing closing quote; "
            "last read: '\"" +
                std::string(59, 'x') + "...'");
}

}  // namespace
