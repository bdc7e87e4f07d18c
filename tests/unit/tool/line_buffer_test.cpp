#include "tool/line_buffer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tool::LineBuffer;

TEST(LineBufferTest, LinesMayComeInPieces) {
  LineBuffer buffer;
  EXPECT_THAT(buffer.add("one\ntw"), ElementsAre("one"));
  EXPECT_THAT(buffer.add("o"), IsEmpty());
  EXPECT_THAT(buffer.add("\n\nthr"), ElementsAre("two", ""));
  EXPECT_EQ(buffer.rest(), "thr");
  EXPECT_EQ(buffer.rest(), "");
}

TEST(LineBufferTest, AnEndlessLineIsSplit) {
  LineBuffer buffer;
  EXPECT_THAT(buffer.add(std::string(LineBuffer::LONGEST_LINE + 1, 'x')),
              ElementsAre(std::string(LineBuffer::LONGEST_LINE, 'x')));
  EXPECT_EQ(buffer.rest(), "x");
}

}  // namespace
