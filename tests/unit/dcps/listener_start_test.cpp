#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/peer.h"
#include "tests/unit/dcps/recording_listener.h"

// A listener that waits until the thread that makes its reader has finished, as a subscription's start-up does.
namespace dcps_test {
namespace {

constexpr DDS::InstanceHandle_t NIL = DDS::HANDLE_NIL;

class ListenerStartTest : public testing::Test {
protected:
  ListenerStartTest() : listener_([this] { finished_.pass(); }) {}

  /// Makes the reader on a thread that is not finished before finish() is called.
  void start(const DDS::DataReaderQos& qos) {
    maker_ = std::thread([this, qos] {
      reader_ = entities_.reader(topic_, &listener_, qos);
      made_.open();
      finish_.pass();
      finished_.open();
    });
  }
  void finish() {
    finish_.open();
    maker_.join();
  }

  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
  Gate made_;
  Gate finish_;
  Gate finished_;
  RecordingListener listener_;
  Entities entities_;
  Reader_var reader_;
  std::thread maker_;
};

TEST_F(ListenerStartTest, SamplesThatAreThereBeforeTheReaderAreTakenWhileItStarts) {
  const Writer_var writer = entities_.writer(topic_, durable_writer());
  writer->write(numbered(1), NIL);
  start(durable_reader());
  const auto taken = listener_.wait_for(1);
  ASSERT_EQ(taken.size(), 1U);
  EXPECT_EQ(taken[0].number, 1);
  EXPECT_TRUE(made_.opens_in_time()) << "the waiting listener does not keep its maker in create_datareader";
  for (int i = 2; i <= 20; ++i) {
    EXPECT_EQ(writer->write(numbered(i), NIL), DDS::RETCODE_OK);
  }
  EXPECT_EQ(listener_.taken().size(), 1U);
  finish();
  EXPECT_EQ(listener_.wait_for(20).size(), 20U);
}

TEST_F(ListenerStartTest, TheEngineGoesOnWhileAListenerWaits) {
  Peer peer({std::to_string(own_domain()), topic_, "keep-all"});
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 1"), "0");
  start(durable_reader());
  ASSERT_EQ(listener_.wait_for(1).size(), 1U);
  // Discovery, delivery to others and deletion all go on.
  const std::string other_topic = topic_ + "/other";
  Peer other({std::to_string(own_domain()), other_topic});
  ASSERT_EQ(other.line(), "ready");
  ASSERT_EQ(other.ask("write 5"), "0");
  const Reader_var reader = entities_.reader(other_topic, nullptr, durable_reader());
  EXPECT_TRUE(take_up_to(reader, 5));
  EXPECT_EQ(entities_.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  ASSERT_EQ(peer.ask("write-many 3"), "0");
  EXPECT_EQ(listener_.taken().size(), 1U);
  finish();
  EXPECT_EQ(listener_.wait_for(4).size(), 4U);
}

TEST_F(ListenerStartTest, ManyReadersStartWhileOneListenerWaits) {
  const Writer_var writer = entities_.writer(topic_, durable_writer());
  writer->write(numbered(1), NIL);
  start(durable_reader());
  ASSERT_EQ(listener_.wait_for(1).size(), 1U);
  std::vector<Reader_var> readers;
  for (int i = 0; i < 10; ++i) {
    readers.emplace_back(entities_.reader(topic_, nullptr, durable_reader()));
  }
  for (const Reader_var& reader : readers) {
    Sample sample = numbered(-1);
    DDS::SampleInfo info{};
    EXPECT_EQ(reader->take_next_sample(sample, info), DDS::RETCODE_OK);
    EXPECT_EQ(sample.quality, 1);
  }
  finish();
}

}  // namespace
}  // namespace dcps_test
