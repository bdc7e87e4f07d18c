#include "control/wire/exec_frames.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using control::wire::exec_frame;
using control::wire::ExecFrameError;
using control::wire::ExecFrameReader;
using control::wire::ExecKind;

TEST(ExecFramesTest, AFrameIsLengthKindAndPayload) {
  EXPECT_EQ(exec_frame(ExecKind::ERR, "abc"), std::string("\3\0\0\0\2abc", 8));
  EXPECT_EQ(exec_frame(ExecKind::INPUT, std::string(0x1234, 'x')).substr(0, 5), std::string("\x34\x12\0\0\0", 5));
}

TEST(ExecFramesTest, FramesAreReadByteByByte) {
  const std::string bytes = exec_frame(ExecKind::OUT, "one") + exec_frame(ExecKind::CONTROL, "");
  ExecFrameReader reader(3);
  std::string seen;
  for (const char byte : bytes) {
    reader.feed({&byte, 1});
    while (const auto frame = reader.next()) {
      seen += std::to_string(static_cast<int>(frame->kind)) + frame->payload + ';';
    }
  }
  EXPECT_EQ(seen, "1one;3;");
}

TEST(ExecFramesTest, ALargerPayloadOrAnotherKindIsAnError) {
  ExecFrameReader large(3);
  large.feed(exec_frame(ExecKind::OUT, "four").substr(0, 5));
  EXPECT_THROW(large.next(), ExecFrameError);
  ExecFrameReader unknown(3);
  unknown.feed(std::string("\0\0\0\0\4", 5));
  EXPECT_THROW(unknown.next(), ExecFrameError);
}

}  // namespace
