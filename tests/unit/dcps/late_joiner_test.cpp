#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/peer.h"
#include "tests/unit/dcps/recording_listener.h"

// Two processes.
namespace dcps_test {
namespace {

/// During its lifetime, processes that are started count as dead one second after their last sign of life.
class ShortLease {
public:
  ShortLease() {
    const char* const before = getenv("CYCLONEDDS_URI");
    before_ = before == nullptr ? "" : before;
    const std::string lease =
        "<CycloneDDS><Domain><Discovery><LeaseDuration>1s</LeaseDuration></Discovery></Domain></CycloneDDS>";
    setenv("CYCLONEDDS_URI", (before_.empty() ? lease : before_ + "," + lease).c_str(), 1);
  }
  ~ShortLease() { setenv("CYCLONEDDS_URI", before_.c_str(), 1); }
  ShortLease(const ShortLease&) = delete;
  ShortLease& operator=(const ShortLease&) = delete;

private:
  std::string before_;
};

class LateJoinerTest : public testing::Test {
protected:
  std::vector<std::string> arguments(const std::string& option = "") const {
    return {std::to_string(own_domain()), topic_, option};
  }

  const std::string topic_ = own_topic(testing::UnitTest::GetInstance()->current_test_info()->name());
  RecordingListener listener_;
  Entities entities_;
};

TEST_F(LateJoinerTest, GetsTheLastValueOfAnotherProcess) {
  Peer peer(arguments());
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 1"), "0");
  ASSERT_EQ(peer.ask("write 2"), "0");
  const Reader_var reader = entities_.reader(topic_, &listener_, durable_reader());
  const auto taken = listener_.wait_for(1);
  ASSERT_EQ(taken.size(), 1U);
  EXPECT_EQ(taken[0].number, 2);
  ASSERT_EQ(peer.ask("write 3"), "0");
  EXPECT_EQ(listener_.wait_for(2).back().number, 3);
  EXPECT_EQ(listener_.taken().size(), 2U);
}

TEST_F(LateJoinerTest, EverySampleOfAnotherProcessIsNotifiedOnce) {
  const Reader_var reader = entities_.reader(topic_, &listener_, durable_reader());
  Peer peer(arguments("keep-all"));
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 0"), "0");
  ASSERT_EQ(listener_.wait_for(1).size(), 1U);
  ASSERT_EQ(peer.ask("write-many 500"), "0");
  const auto taken = listener_.wait_for(501);
  ASSERT_EQ(taken.size(), 501U);
  for (std::size_t i = 0; i < taken.size(); ++i) {
    EXPECT_EQ(taken[i].result, DDS::RETCODE_OK);
    EXPECT_EQ(taken[i].number, static_cast<CORBA::Long>(i));
  }
}

TEST_F(LateJoinerTest, SeesAnotherProcessDisposeAndUnregister) {
  const Reader_var reader = entities_.reader(topic_, &listener_, durable_reader());
  Peer peer(arguments());
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 1"), "0");
  ASSERT_EQ(listener_.wait_for(1).size(), 1U);
  ASSERT_EQ(peer.ask("dispose"), "0");
  ASSERT_EQ(listener_.wait_for(2).size(), 2U);
  ASSERT_EQ(peer.ask("write 2"), "0");
  ASSERT_EQ(peer.ask("unregister"), "0");
  const auto taken = listener_.wait_for(4);
  ASSERT_EQ(taken.size(), 4U);
  EXPECT_FALSE(taken[1].valid);
  EXPECT_EQ(taken[1].state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
  EXPECT_EQ(taken[2].number, 2);
  EXPECT_FALSE(taken[3].valid);
  EXPECT_EQ(taken[3].state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
}

TEST_F(LateJoinerTest, SeesThatAnotherProcessHasLeftNoWriters) {
  const Reader_var reader = entities_.reader(topic_, &listener_, durable_reader());
  Peer peer(arguments("no-autodispose"));
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 1"), "0");
  ASSERT_EQ(listener_.wait_for(1).size(), 1U);
  ASSERT_EQ(peer.ask("unregister"), "0");
  const auto taken = listener_.wait_for(2);
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_FALSE(taken[1].valid);
  EXPECT_EQ(taken[1].state, DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
}

TEST_F(LateJoinerTest, SeesAnotherProcessLeave) {
  const Reader_var reader = entities_.reader(topic_, &listener_, durable_reader());
  Peer peer(arguments());
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 1"), "0");
  ASSERT_EQ(listener_.wait_for(1).size(), 1U);
  EXPECT_EQ(peer.finish("leave 3"), 3);
  const auto taken = listener_.wait_for(2);
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_FALSE(taken[1].valid);
  EXPECT_EQ(taken[1].state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
}

/// Detects that its reader has no writers left.
class UnmatchedListener : public RecordingListener {
public:
  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus& status) override {
    if (status.current_count == 0) {
      unmatched.open();
    }
  }
  Gate unmatched;
};

TEST_F(LateJoinerTest, IsNotToldThatAnotherProcessWasKilled) {
  UnmatchedListener listener;
  Entities entities;
  const Reader_var reader = entities.reader(topic_, &listener, durable_reader());
  {
    const ShortLease lease;
    Peer peer(arguments("no-autodispose"));
    ASSERT_EQ(peer.line(), "ready");
    ASSERT_EQ(peer.ask("write 1"), "0");
    ASSERT_EQ(listener.wait_for(1).size(), 1U);
  }
  ASSERT_TRUE(listener.unmatched.opens_in_time());
  const Writer_var writer = entities.writer(topic_, durable_writer());
  ASSERT_EQ(writer->write(numbered(2), DDS::HANDLE_NIL), DDS::RETCODE_OK);
  ASSERT_EQ(listener.wait_for(2).size(), 2U);
  ASSERT_EQ(entities.subscriber->delete_datareader(reader), DDS::RETCODE_OK);
  const auto taken = listener.taken();
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_EQ(taken[1].number, 2);
}

TEST_F(LateJoinerTest, ASubscriberMayBeDeletedByAListener) {
  Peer peer(arguments("keep-all"));
  ASSERT_EQ(peer.line(), "ready");
  Reader_var reader;
  Gate deleted;
  int calls = 0;
  auto* const deleting = new RecordingListener([&] {
    if (++calls < 3) {
      return;
    }
    EXPECT_EQ(entities_.subscriber->delete_contained_entities(), DDS::RETCODE_OK);
    EXPECT_EQ(entities_.participant->delete_subscriber(entities_.subscriber), DDS::RETCODE_OK);
    deleted.open();
  });
  const DDS::DataReaderListener_var owner = deleting;
  reader = entities_.reader(topic_, deleting, durable_reader());
  ASSERT_EQ(peer.ask("write 0"), "0");
  ASSERT_EQ(deleting->wait_for(1).size(), 1U);
  ASSERT_EQ(peer.ask("write-many 5"), "0");
  EXPECT_TRUE(deleted.opens_in_time());
  EXPECT_EQ(deleting->taken().size(), 3U);
}

}  // namespace
}  // namespace dcps_test
