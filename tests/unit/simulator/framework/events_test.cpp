#include <gtest/gtest.h>
#include <varnok_events.h>

#include <cerrno>
#include <thread>

#include "tests/unit/simulator/model/this_unit.h"

namespace {

using doubles::lines_of;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator_test::ThisUnit;
using Varnok::EngineEventMessage_i;

Varnok::Event::Message message_of(const char* source, const char* text) {
  Varnok::Event::Message message;
  message.source = CORBA::string_dup(source);
  message.category = 3;
  message.text = CORBA::string_dup(text);
  message.severity = 3;
  message.flags = 0x10000;
  message.code = 0;
  message.timestamp = 1'700'000'000;
  return message;
}

class FrameworkEventsTest : public ::testing::Test {
protected:
  FrameworkEventsTest() {
    std::filesystem::remove_all(file_);
    ThisUnit::get().reset();
  }
  ~FrameworkEventsTest() override {
    std::filesystem::remove_all(file_);
    ThisUnit::get().reset();
  }

  /// The message of the exception for a rejected event.
  std::string refusal() {
    try {
      channel_.SendEventMessage(message_of("a", "b"));
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "sent";
  }

  const std::string file_ = ThisUnit::get().file("events.jsonl");
  EngineEventMessage_i channel_;
};

TEST_F(FrameworkEventsTest, AnEventIsOneLineWithItsFieldsInOrder) {
  const std::string line =
      R"j({"source":"Handheld_Hardware::shutdown()","category":3,"text":"Power Supply Driver Failure: Shutdown",)j"
      R"j("severity":3,"flags":65536,"code":0,"timestamp":1700000000})j";
  channel_.SendEventMessage(message_of("Handheld_Hardware::shutdown()", "Power Supply Driver Failure: Shutdown"));
  EXPECT_EQ(lines_of(file_), std::vector<std::string>{line});
}

TEST_F(FrameworkEventsTest, NumbersKeepTheirSign) {
  Varnok::Event::Message message = message_of("", "line\n\"two\"");
  message.category = -1;
  message.flags = 0xFFFFFFFF;
  message.code = -2147483647 - 1;
  message.timestamp = -1;
  const std::string line = R"j({"source":"","category":-1,"text":"line\n\"two\"","severity":3,"flags":4294967295,)j"
                           R"j("code":-2147483648,"timestamp":-1})j";
  channel_.SendEventMessage(message);
  EXPECT_EQ(lines_of(file_), std::vector<std::string>{line});
}

TEST_F(FrameworkEventsTest, ChannelsAndThreadsShareTheLog) {
  const auto send = [] {
    EngineEventMessage_i channel;
    for (int event = 0; event < 100; ++event) {
      channel.SendEventMessage(message_of("thread", std::string(300, 'x').c_str()));
    }
  };
  std::thread one(send);
  std::thread other(send);
  one.join();
  other.join();
  const auto lines = lines_of(file_);
  ASSERT_EQ(lines.size(), 200U);
  for (const std::string& line : lines) {
    ASSERT_EQ(line, lines[0]);
  }
}

TEST_F(FrameworkEventsTest, MakingAChannelTouchesNoFile) {
  EngineEventMessage_i another;
  EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(FrameworkEventsTest, ALogThatCannotBeWrittenRefusesTheEvent) {
  std::filesystem::create_directory(file_);
  EXPECT_EQ(refusal(), file_ + ": Is a directory");
}

TEST_F(FrameworkEventsTest, ARefusedEventIsNotInTheLog) {
  ThisUnit::get().model().faults().arm(Point::EVENTS_SEND, {FaultKind::FAIL, ENOSPC, 1, 1});
  EXPECT_EQ(refusal(), "event log: No space left on device");
  EXPECT_EQ(lines_of(file_).size(), 0U);
  EXPECT_EQ(refusal(), "sent");
  EXPECT_EQ(lines_of(file_).size(), 1U);
}

TEST_F(FrameworkEventsTest, EventsAreRecorded) {
  ThisUnit::get().model().record().start();
  channel_.SendEventMessage(message_of("a", "b"));
  const auto lines = lines_of(ThisUnit::get().file("calls.jsonl"));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NE(lines[0].find(R"("at":"events.send","args":{"source":"a","category":3,"text":"b",)"), std::string::npos);
}

}  // namespace
