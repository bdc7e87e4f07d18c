#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <set>
#include <thread>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/peer.h"
#include "tests/unit/dcps/recording_listener.h"

namespace dcps_test {
namespace {

constexpr DDS::InstanceHandle_t NIL = DDS::HANDLE_NIL;

/// In each test the entities are made after the objects that their listeners use, and so are destroyed before them.
class ListenerTest : public testing::Test {
protected:
  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
};

void expect_all_taken(const std::vector<RecordingListener::Taken>& taken) {
  EXPECT_TRUE(std::all_of(taken.begin(), taken.end(), [](const auto& one) { return one.result == DDS::RETCODE_OK; }));
}

TEST_F(ListenerTest, EverySampleIsNotifiedOnce) {
  RecordingListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var first = entities.writer(topic_);
  const Writer_var second = entities.writer(topic_);
  const auto write_thousand = [](Writer* writer, int from) {
    for (int i = 0; i < 1000; ++i) {
      writer->write(numbered(from + i), NIL);
    }
  };
  std::thread other(write_thousand, second.in(), 1000);
  write_thousand(first, 0);
  other.join();
  const auto taken = listener.wait_for(2000);
  ASSERT_EQ(taken.size(), 2000U);
  expect_all_taken(taken);
  std::set<CORBA::Long> numbers;
  for (const auto& one : taken) {
    numbers.insert(one.number);
  }
  EXPECT_EQ(numbers.size(), 2000U);
  EXPECT_EQ(*numbers.begin(), 0);
  EXPECT_EQ(*numbers.rbegin(), 1999);
}

TEST_F(ListenerTest, ChangesOfStateAreNotifiedOnceEach) {
  RecordingListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  for (int i = 0; i < 200; ++i) {
    writer->write(numbered(i), NIL);
    writer->dispose(numbered(i), NIL);
  }
  const auto taken = listener.wait_for(400);
  ASSERT_EQ(taken.size(), 400U);
  expect_all_taken(taken);
  for (std::size_t i = 0; i < 400; ++i) {
    EXPECT_EQ(taken[i].valid, i % 2 == 0) << i;
  }
  EXPECT_EQ(taken[399].state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
}

TEST_F(ListenerTest, TheListenerIsNotCalledOnTheWritersThread) {
  RecordingListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  for (int i = 0; i < 20; ++i) {
    writer->write(numbered(i), NIL);
    listener.wait_for(static_cast<std::size_t>(i) + 1);
  }
  writer->dispose(numbered(0), NIL);
  const auto taken = listener.wait_for(21);
  ASSERT_EQ(taken.size(), 21U);
  for (const auto& one : taken) {
    EXPECT_NE(one.thread, std::this_thread::get_id());
  }
}

TEST_F(ListenerTest, ABlockedListenerHoldsUpNeitherWritersNorOtherWork) {
  BlockingListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(0), NIL);
  ASSERT_TRUE(listener.entered.opens_in_time());
  for (int i = 1; i < 50; ++i) {
    EXPECT_EQ(writer->write(numbered(i), NIL), DDS::RETCODE_OK);
  }
  const Writer_var another = entities.writer(topic_ + "/another");
  const Reader_var its_reader = entities.reader(topic_ + "/another");
  EXPECT_EQ(another->write(numbered(1), NIL), DDS::RETCODE_OK);
  EXPECT_EQ(entities.subscriber->delete_datareader(its_reader), DDS::RETCODE_OK);
  EXPECT_EQ(listener.taken().size(), 1U);
  listener.leave.open();
  EXPECT_EQ(listener.wait_for(50).size(), 50U);
}

TEST_F(ListenerTest, DeletionWaitsForTheCallUnderWay) {
  BlockingListener listener;
  RecordingListener later;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  for (int i = 0; i < 10; ++i) {
    writer->write(numbered(i), NIL);
  }
  ASSERT_TRUE(listener.entered.opens_in_time());
  std::size_t calls_before = 0;
  auto deletion = std::async(std::launch::async, [&] {
    entities.subscriber->delete_contained_entities();
    calls_before = listener.taken().size();
    return listener.left.load();
  });
  EXPECT_EQ(deletion.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
  listener.leave.open();
  EXPECT_TRUE(deletion.get()) << "the call has returned before the deletion";
  const Reader_var other = entities.reader(topic_, &later);
  writer->write(numbered(10), NIL);
  EXPECT_EQ(later.wait_for(1).size(), 1U) << "the listener thread goes on";
  EXPECT_EQ(listener.taken().size(), calls_before) << "no call begins after the deletion";
}

TEST_F(ListenerTest, AListenerMayGoAsSoonAsItsReaderIsDeleted) {
  Entities entities;
  const Writer_var writer = entities.writer(topic_);
  for (int i = 0; i < 300; ++i) {
    Gate entered;
    RecordingListener listener([&] { entered.open(); });
    const Reader_var reader = entities.reader(topic_, &listener);
    writer->write(numbered(i), NIL);
    ASSERT_TRUE(entered.opens_in_time());
    ASSERT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  }
}

TEST_F(ListenerTest, ReadersAreDeletedWhileDataArrive) {
  Entities entities;
  const Writer_var writer = entities.writer(topic_);
  std::atomic<bool> stop{false};
  std::thread writing([&] {
    for (int i = 0; !stop; ++i) {
      writer->write(numbered(i), NIL);
    }
  });
  std::size_t taken = 0;
  for (int i = 0; i < 30; ++i) {
    RecordingListener listener;
    const Reader_var reader = entities.reader(topic_, &listener);
    listener.wait_for(2);
    ASSERT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
    expect_all_taken(listener.taken());
    taken += listener.taken().size();
  }
  stop = true;
  writing.join();
  EXPECT_GE(taken, 60U);
}

TEST_F(ListenerTest, AReaderMayBeDeletedByItsOwnListener) {
  Gate made;
  Gate deleted;
  Reader_var reader;
  Entities entities;
  const DDS::DataReaderListener_var listener = new RecordingListener([&] {
    made.pass();
    EXPECT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
    deleted.open();
  });
  reader = entities.reader(topic_, listener);
  made.open();
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(1), NIL);
  EXPECT_TRUE(deleted.opens_in_time());
}

TEST_F(ListenerTest, AListenerMayWriteAndMakeEntities) {
  Entities others;
  const Writer_var answer = others.writer(topic_ + "/answer");
  RecordingListener answers;
  RecordingListener listener([&] {
    answer->write(numbered(2), NIL);
    const Writer_var more = others.writer(topic_ + "/answer");
    more->write(numbered(3), NIL);
  });
  Entities entities;
  const Reader_var answer_reader = entities.reader(topic_ + "/answer", &answers);
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(1), NIL);
  const auto taken = answers.wait_for(2);
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_EQ(taken[0].number, 2);
  EXPECT_EQ(taken[1].number, 3);
}

TEST_F(ListenerTest, WhatIsNotInTheMaskIsNotTold) {
  RecordingListener listener;
  Entities entities;
  const DDS::Topic_var topic = entities.topic(topic_);
  const DDS::DataReader_var made =
      entities.subscriber->create_datareader(topic, keep_all_reader(), &listener, DDS::SUBSCRIPTION_MATCHED_STATUS);
  const Reader_var reader = Reader::_narrow(made);
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(1), NIL);
  Sample sample{};
  DDS::SampleInfo info{};
  EXPECT_EQ(reader->take_next_sample(sample, info), DDS::RETCODE_OK);
  EXPECT_TRUE(listener.taken().empty());
}

/// Counts the matches that it is notified of.
class MatchListener : public QuietListener {
public:
  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus& status) override {
    if (status.current_count == 1) {
      matched.open();
    }
    if (status.current_count == 0) {
      unmatched.open();
    }
  }
  Gate matched;
  Gate unmatched;
};

TEST_F(ListenerTest, AReadersListenerHearsOfMatches) {
  MatchListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener);
  const Writer_var writer = entities.writer(topic_);
  EXPECT_TRUE(listener.matched.opens_in_time());
  entities.publisher->delete_datawriter(writer);
  EXPECT_TRUE(listener.unmatched.opens_in_time());
}

class IncompatibleListener : public QuietListener {
public:
  void on_requested_incompatible_qos(DDS::DataReader_ptr, const DDS::RequestedIncompatibleQosStatus& status) override {
    policy = status.last_policy_id;
    told.open();
  }
  Gate told;
  std::atomic<DDS::QosPolicyId_t> policy{DDS::INVALID_QOS_POLICY_ID};
};

TEST_F(ListenerTest, AReadersListenerHearsOfIncompatibleWriters) {
  IncompatibleListener listener;
  Entities entities;
  const Writer_var writer = entities.writer(topic_);
  const Reader_var reader = entities.reader(topic_, &listener, durable_reader());
  ASSERT_TRUE(listener.told.opens_in_time());
  EXPECT_EQ(listener.policy, DDS::DURABILITY_QOS_POLICY_ID);
}

class RejectionListener : public QuietListener {
public:
  void on_sample_rejected(DDS::DataReader_ptr, const DDS::SampleRejectedStatus& status) override {
    reason = status.last_reason;
    told.open();
  }
  Gate told;
  std::atomic<DDS::SampleRejectedStatusKind> reason{DDS::NOT_REJECTED};
};

TEST_F(ListenerTest, AReadersListenerHearsOfRejectedSamples) {
  RejectionListener listener;
  Entities entities;
  DDS::DataReaderQos qos = keep_all_reader();
  qos.reliability.kind = DDS::BEST_EFFORT_RELIABILITY_QOS;
  qos.resource_limits = {1, 1, 1};
  const Reader_var reader = entities.reader(topic_, &listener, qos);
  const Writer_var writer = entities.writer(topic_);
  writer->write(numbered(1), NIL);
  writer->write(numbered(2), NIL);
  ASSERT_TRUE(listener.told.opens_in_time());
  EXPECT_EQ(listener.reason, DDS::REJECTED_BY_SAMPLES_LIMIT);
}

}  // namespace
}  // namespace dcps_test
