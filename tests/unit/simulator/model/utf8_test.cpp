#include "simulator/model/utf8.h"

#include <gtest/gtest.h>

namespace {

using simulator::model::first_sequence;
using simulator::model::is_utf8;

TEST(Utf8Test, KnowsTheSequenceAtTheStart) {
  EXPECT_EQ(first_sequence("ab").length, 1U);
  EXPECT_TRUE(first_sequence("ab").is_whole);
  EXPECT_EQ(first_sequence("\xC3\xA4x").length, 2U);
  EXPECT_EQ(first_sequence("\xE2\x82\xACx").length, 3U);
  EXPECT_EQ(first_sequence("\xF0\x9F\x93\xA1x").length, 4U);
  EXPECT_EQ(first_sequence("\xE2\x82x").length, 2U);
  EXPECT_FALSE(first_sequence("\xE2\x82x").is_whole);
}

TEST(Utf8Test, ATextIsUtf8IfAllOfItIs) {
  EXPECT_TRUE(is_utf8(""));
  EXPECT_TRUE(is_utf8("plain \xC3\xA4 \xF0\x9F\x93\xA1"));
  for (const char* ill : {"\xFF", "a\x80", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"}) {
    EXPECT_FALSE(is_utf8(ill)) << ill;
  }
}

}  // namespace
