#include <gmock/gmock.h>

#include <memory>

#include "messaging/dds_subscriber.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/fake_time.h"
#include "tests/doubles/fake_varnok.h"

// An engine's thread may hold the listener after its reader is deleted. Time is faked for the thread that destroys the
// subscriber.

namespace {

using doubles::calls;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using doubles::PlayedTime;
using testing::ElementsAre;
using testing::IsEmpty;
using Subscriber = Varnok::DDS_Subscriber<Varnok::DDS_VoidMessage>;

constexpr std::chrono::microseconds POLL{1000};

class DdsListenerReleaseTest : public testing::Test {
protected:
  DdsListenerReleaseTest() {
    doubles::reset_framework();
    subscriber_ = std::make_unique<Subscriber>("Halcyra/local/UIDoneLoading", [](const char*) {});
    subscriber_->waitForInitDone();
    calls().clear();
  }

  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  std::unique_ptr<Subscriber> subscriber_;
};

TEST_F(DdsListenerReleaseTest, IsPolledOnceAMillisecondAfterTheDeletions) {
  DDS::DataReaderListener_var held = dds_.reader_listener();
  PlayedTime time;
  time.runs_in_sleep(3, [&held] {
    calls().record("released");
    held = DDS::DataReaderListener::_nil();
  });
  subscriber_.reset();
  EXPECT_THAT(time.sleeps(), ElementsAre(POLL, POLL, POLL));
  EXPECT_THAT(calls().all(), ElementsAre("dds delete_contained_entities of subscriber", "dds delete_subscriber",
                                         "dds delete_topic Halcyra/local/UIDoneLoading", "released"));
}

TEST_F(DdsListenerReleaseTest, IsNotAwaitedIfNothingHoldsTheListener) {
  const PlayedTime time;
  subscriber_.reset();
  EXPECT_THAT(time.sleeps(), IsEmpty());
}

TEST_F(DdsListenerReleaseTest, IsNotAwaitedIfTheReaderCannotBeDeleted) {
  dds_.refuses("delete_contained_entities of subscriber");
  DDS::DataReaderListener_var held = dds_.reader_listener();
  PlayedTime time;
  time.runs_in_sleep(1, [&held] { held = DDS::DataReaderListener::_nil(); });
  subscriber_.reset();
  EXPECT_THAT(time.sleeps(), IsEmpty());
  held._retn();  // The listener has gone with the subscriber.
}

}  // namespace
