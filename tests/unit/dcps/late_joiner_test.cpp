#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/peer.h"
#include "tests/unit/dcps/recording_listener.h"

// Two processes.
namespace dcps_test {
namespace {

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
  EXPECT_EQ(WEXITSTATUS(peer.finish("leave 3")), 3);
  const auto taken = listener_.wait_for(2);
  ASSERT_EQ(taken.size(), 2U);
  EXPECT_FALSE(taken[1].valid);
  EXPECT_EQ(taken[1].state, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE);
}

TEST_F(LateJoinerTest, AReaderMayBeDeletedByItsListenerOnAThreadOfTheEngine) {
  Peer peer(arguments("keep-all"));
  ASSERT_EQ(peer.line(), "ready");
  Reader_var reader;
  Gate deleted;
  int calls = 0;
  auto* const deleting = new RecordingListener([&] {
    // From its second call on, the listener runs on the receiving thread itself.
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
  EXPECT_TRUE(deleted.wait_briefly());
  EXPECT_EQ(deleting->taken().size(), 3U);
}

}  // namespace
}  // namespace dcps_test
