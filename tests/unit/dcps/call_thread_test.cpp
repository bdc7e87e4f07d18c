#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <set>
#include <thread>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/peer.h"
#include "tests/unit/dcps/recording_listener.h"

// One thread calls all listeners: effects of another process's samples on it and on this process's threads.
namespace dcps_test {
namespace {

using namespace std::chrono_literals;

constexpr DDS::InstanceHandle_t NIL = DDS::HANDLE_NIL;

class CallThreadTest : public testing::Test {
protected:
  /// A peer that has written a sample, which `listener` has taken.
  std::unique_ptr<Peer> heard_peer(RecordingListener& listener) {
    auto peer = std::make_unique<Peer>(std::vector<std::string>{std::to_string(own_domain()), topic_, "keep-all"});
    EXPECT_EQ(peer->line(), "ready");
    EXPECT_EQ(peer->ask("write 1"), "0");
    EXPECT_EQ(listener.wait_for(1).size(), 1U);
    return peer;
  }

  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
};

/// Blocks when notified of a second writer.
class BlockingOnMatch : public BlockingListener {
public:
  BlockingOnMatch() : BlockingListener(NEVER) {}

  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus& status) override {
    if (status.current_count == 2) {
      block();
    }
  }
};

bool is_deleted(Reader* reader) {
  Sample sample{};
  DDS::SampleInfo info{};
  return reader->take_next_sample(sample, info) == DDS::RETCODE_ALREADY_DELETED;
}

TEST_F(CallThreadTest, DeletionWaitsForAStatusCallDuringWhichASampleArrives) {
  BlockingOnMatch listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener, durable_reader());
  const Reader_var arrivals = entities.reader(topic_, nullptr, durable_reader());
  const auto peer = heard_peer(listener);
  const Writer_var writer = entities.writer(topic_, durable_writer());
  ASSERT_TRUE(listener.entered.opens_in_time());
  ASSERT_EQ(peer->ask("write 2"), "0");
  ASSERT_TRUE(take_up_to(arrivals, 2));
  auto deletion = std::async(std::launch::async, [&] {
    entities.subscriber->delete_datareader(reader);
    return listener.left.load();
  });
  EXPECT_EQ(deletion.wait_for(200ms), std::future_status::timeout);
  listener.leave.open();
  EXPECT_TRUE(deletion.get()) << "the call has returned before the deletion";
}

TEST_F(CallThreadTest, AListenerMayWriteToItsOwnTopicFromASampleOfAnotherProcess) {
  std::atomic<int> calls{0};
  Writer_var writer;
  RecordingListener listener([&] {
    if (++calls == 2) {
      EXPECT_EQ(writer->write(numbered(7), NIL), DDS::RETCODE_OK);
    }
  });
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener, durable_reader());
  writer = entities.writer(topic_, durable_writer());
  const auto peer = heard_peer(listener);
  ASSERT_EQ(peer->ask("write 2"), "0");
  const auto taken = listener.wait_for(3);
  ASSERT_EQ(taken.size(), 3U);
  EXPECT_EQ(taken[1].number, 2);
  EXPECT_EQ(taken[2].number, 7);
}

TEST_F(CallThreadTest, AListenerThatBlocksOnASampleOfAnotherProcessHoldsUpNeitherWritesNorDeletions) {
  BlockingListener listener(2);
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener, durable_reader());
  const Writer_var writer = entities.writer(topic_, durable_writer());
  const Reader_var other = entities.reader(topic_, nullptr, durable_reader());
  const auto peer = heard_peer(listener);
  ASSERT_EQ(peer->ask("write 2"), "0");
  ASSERT_TRUE(listener.entered.opens_in_time());
  auto work = std::async(std::launch::async, [&] {
    EXPECT_EQ(writer->write(numbered(3), NIL), DDS::RETCODE_OK);
    EXPECT_EQ(entities.subscriber->delete_datareader(other), DDS::RETCODE_OK);
  });
  EXPECT_EQ(work.wait_for(5s), std::future_status::ready);
  listener.leave.open();
  work.wait();
  EXPECT_EQ(listener.wait_for(3).back().number, 3);
}

TEST_F(CallThreadTest, EachSampleIsNotifiedOnceEvenIfTheListenerTakesNone) {
  std::atomic<int> calls{0};
  class Counting : public QuietListener {
  public:
    explicit Counting(std::atomic<int>& calls) : calls_(calls) {}
    void on_data_available(DDS::DataReader_ptr) override {
      if (++calls_ == 5) {
        five.open();
      }
    }
    Gate five;

  private:
    std::atomic<int>& calls_;
  } listener(calls);
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  for (int i = 1; i <= 5; ++i) {
    writer->write(numbered(i), NIL);
  }
  EXPECT_TRUE(listener.five.opens_in_time());
  EXPECT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  EXPECT_EQ(calls, 5);
}

TEST_F(CallThreadTest, ChangesThatWaitBehindABlockedCallAreNotifiedOnceEach) {
  BlockingListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(0), NIL);
  ASSERT_TRUE(listener.entered.opens_in_time());
  for (int i = 1; i <= 100; ++i) {
    writer->dispose(numbered(i), NIL);
    writer->write(numbered(i), NIL);
  }
  writer->dispose(numbered(100), NIL);
  listener.leave.open();
  ASSERT_EQ(listener.wait_for(202).size(), 202U);
  EXPECT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  const auto taken = listener.taken();
  ASSERT_EQ(taken.size(), 202U);
  for (std::size_t i = 0; i < taken.size(); ++i) {
    EXPECT_EQ(taken[i].result, DDS::RETCODE_OK) << i;
    EXPECT_EQ(taken[i].valid, i % 2 == 0) << i;
  }
}

TEST_F(CallThreadTest, OneThreadCallsAllListenersOfAParticipant) {
  RecordingListener first;
  RecordingListener second;
  Entities entities;
  const Reader_var one = entities.reader(topic_, &first);
  const Reader_var other = entities.reader(topic_, &second);
  const Writer_var writer = entities.writer(topic_);
  for (int i = 0; i < 100; ++i) {
    writer->write(numbered(i), NIL);
  }
  std::set<std::thread::id> threads;
  for (RecordingListener* listener : {&first, &second}) {
    for (const auto& taken : listener->wait_for(100)) {
      threads.insert(taken.thread);
    }
  }
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

/// Deletes its reader and reports its own destruction.
class SelfDeleting : public QuietListener {
public:
  SelfDeleting(std::function<void()> in_call, Gate& destroyed) : in_call_(std::move(in_call)), destroyed_(destroyed) {}
  ~SelfDeleting() override { destroyed_.open(); }
  void on_data_available(DDS::DataReader_ptr) override { in_call_(); }

private:
  const std::function<void()> in_call_;
  Gate& destroyed_;
};

TEST_F(CallThreadTest, AListenerThatDeletesItsReaderIsReleasedAtTheEndOfItsCall) {
  Gate made;
  Gate destroyed;
  Reader_var reader;
  Entities entities;
  {
    const DDS::DataReaderListener_var listener = new SelfDeleting(
        [&] {
          made.pass();
          EXPECT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
          EXPECT_TRUE(is_deleted(reader));
          EXPECT_FALSE(destroyed.is_open());
        },
        destroyed);
    reader = entities.reader(topic_, listener);
  }
  made.open();
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(1), NIL);
  EXPECT_TRUE(destroyed.opens_in_time());
}

TEST_F(CallThreadTest, AListenerMayDeleteTheParticipant) {
  Gate made;
  Gate destroyed;
  auto entities = std::make_unique<Entities>();
  Reader_var reader;
  {
    const DDS::DataReaderListener_var listener = new SelfDeleting(
        [&] {
          made.pass();
          entities.reset();
        },
        destroyed);
    reader = entities->reader(topic_, listener);
  }
  const Writer_var writer = entities->writer(topic_);
  writer->write(numbered(1), NIL);
  made.open();
  EXPECT_TRUE(destroyed.opens_in_time());
  EXPECT_TRUE(is_deleted(reader));
}

}  // namespace
}  // namespace dcps_test
