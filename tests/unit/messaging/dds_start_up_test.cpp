#include <gmock/gmock.h>

#include <memory>

#include "messaging/dds_subscriber.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/fake_time.h"
#include "tests/doubles/fake_varnok.h"
#include "tests/doubles/gate.h"

// Waiting for a subscription's start-up polls once per millisecond until its thread has ended. Time is faked for the
// waiting thread; its third sleep lets start-up continue and end.

namespace {

using doubles::calls;
using doubles::FakeDds;
using doubles::Gate;
using doubles::ParticipantInUse;
using doubles::PlayedTime;
using testing::ElementsAre;
using testing::IsEmpty;
using Varnok::DDS_VoidMessage;

constexpr std::chrono::microseconds POLL{1000};

/// The base class alone, so that the test controls the start-up thread.
class OpenBase : public Varnok::DDS_SubscriberBase<DDS_VoidMessage, void(const char*)> {
public:
  OpenBase() : DDS_SubscriberBase("Halcyra/local/UIDoneLoading", [](const char*) { calls().record("heard"); }) {}
};

/// A subscription whose start-up thread has done its work but not ended.
class DdsStartUpTest : public testing::Test {
protected:
  DdsStartUpTest() {
    doubles::reset_framework();
    calls().clear();
    start_up_ = boost::thread([this] {
      base_->InitSubBase(nullptr, 0, 0, DDS::VOLATILE_DURABILITY_QOS);
      connected_.open();
      ending_.pass();
    });
    connected_.pass();
  }
  ~DdsStartUpTest() override { let_start_up_end(); }

  void let_start_up_end() {
    ending_.open();
    if (start_up_.joinable()) {
      start_up_.join();
    }
  }
  /// The sleeps of `work`, in the third of which start-up ends.
  template <typename Work>
  std::vector<std::chrono::microseconds> sleeps_of(const Work& work) {
    PlayedTime time;
    time.runs_in_sleep(3, [this] {
      calls().record("start-up ends");
      let_start_up_end();
    });
    work();
    return time.sleeps();
  }

  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  Gate connected_;
  Gate ending_;
  std::unique_ptr<OpenBase> base_ = std::make_unique<OpenBase>();
  boost::thread start_up_;
};

TEST_F(DdsStartUpTest, IsDoneWhenItsThreadHasEndedAndLookedAtOnceAMillisecond) {
  EXPECT_THAT(sleeps_of([this] { base_->waitForInitDone(); }), ElementsAre(POLL, POLL, POLL));
}

TEST_F(DdsStartUpTest, IsNotWaitedForOnceItIsDone) {
  let_start_up_end();
  EXPECT_THAT(sleeps_of([this] { base_->waitForInitDone(); }), IsEmpty());
}

TEST_F(DdsStartUpTest, HoldsUpDestructionWhichLooksOnceAMillisecond) {
  calls().clear();
  EXPECT_THAT(sleeps_of([this] { base_.reset(); }), ElementsAre(POLL, POLL, POLL));
  EXPECT_THAT(calls().all(), ElementsAre("start-up ends", "dds delete_contained_entities of subscriber",
                                         "dds delete_subscriber", "dds delete_topic Halcyra/local/UIDoneLoading"));
}

}  // namespace
