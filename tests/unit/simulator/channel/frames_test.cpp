#include "simulator/channel/frames.h"

#include <gmock/gmock.h>

namespace {

using namespace simulator::channel;
using namespace std::string_literals;

TEST(FramesTest, AFrameIsLengthStreamAndPayloadLeastSignificantByteFirst) {
  EXPECT_EQ(frame_of(0x01020304, "abc"), "\x03\0\0\0\x04\x03\x02\x01"s + "abc");
}

TEST(FramesTest, AnEmptyPayloadIsAFrame) {
  FrameReader reader(10);
  reader.feed(frame_of(7, ""));
  const auto frame = reader.next();
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->stream, 7u);
  EXPECT_EQ(frame->payload, "");
  EXPECT_FALSE(reader.next());
}

TEST(FramesTest, FramesThatArriveByteByByteAreWhole) {
  const std::string bytes = frame_of(1, "one") + frame_of(2, "two\0three"s);
  FrameReader reader(100);
  std::vector<std::string> payloads;
  for (const char byte : bytes) {
    reader.feed({&byte, 1});
    while (const auto frame = reader.next()) {
      payloads.push_back(frame->payload);
    }
  }
  EXPECT_THAT(payloads, testing::ElementsAre("one", "two\0three"s));
}

TEST(FramesTest, SeveralFramesThatArriveAtOnceComeInOrder) {
  FrameReader reader(100);
  reader.feed(frame_of(1, "a") + frame_of(2, "b") + frame_of(3, "c").substr(0, 8));
  EXPECT_EQ(reader.next()->stream, 1u);
  EXPECT_EQ(reader.next()->stream, 2u);
  EXPECT_FALSE(reader.next());
  reader.feed("c");
  EXPECT_EQ(reader.next()->payload, "c");
}

TEST(FramesTest, APayloadAsLargeAsAllowedPasses) {
  FrameReader reader(4);
  reader.feed(frame_of(1, "1234"));
  EXPECT_EQ(reader.next()->payload, "1234");
}

TEST(FramesTest, ALargerPayloadIsRefusedBeforeItArrives) {
  FrameReader reader(4);
  reader.feed(frame_of(1, "12345").substr(0, 8));
  EXPECT_THROW(
      {
        try {
          reader.next();
        } catch (const FrameError& error) {
          EXPECT_STREQ(error.what(), "frame of 5 bytes; at most 4 are allowed");
          throw;
        }
      },
      FrameError);
}

}  // namespace
