#include "messaging/dds_subscriber.h"

#include <gmock/gmock.h>

#include <future>
#include <mutex>
#include <set>
#include <thread>

#include "tests/doubles/captured_output.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/gate.h"
#include "tests/doubles/waiting_thread.h"
#include "tests/unit/messaging/attribute_topic.h"

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::Gate;
using doubles::ParticipantInUse;
using doubles::ScriptedReader;
using doubles::WaitingThread;
using testing::ElementsAre;
using testing::IsEmpty;
using Varnok::DDS_Subscriber;
using Varnok::DDS_VoidMessage;
using VoidSubscriber = DDS_Subscriber<DDS_VoidMessage>;

const char TOPIC[] = "Halcyra/local/UIDoneLoading";
const char HEARD[] = "heard Halcyra/local/UIDoneLoading";
const std::string DELETE_TOPIC = std::string("dds delete_topic ") + TOPIC;
const std::string DELIVERY =
    "void Varnok::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) [with T = Varnok::DDS_VoidMessage]";

std::string create_topic() {
  const VoidAttribute::TypeSupport_var type = new VoidAttribute::TypeSupportImpl;
  const CORBA::String_var name = type->get_type_name();
  return std::string("dds create_topic ") + TOPIC + " " + name.in();
}

void hear(const char* topic) {
  calls().record(std::string("heard ") + topic);
}

class DdsSubscriberTest : public testing::Test {
protected:
  DdsSubscriberTest() {
    doubles::reset_framework();
    calls().clear();
  }
  ~DdsSubscriberTest() override { EXPECT_EQ(output_.err(), ""); }

  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  CapturedOutput output_;
};

TEST_F(DdsSubscriberTest, StartUpMakesSubscriberTopicAndReaderInOrder) {
  const VoidSubscriber subscriber(TOPIC, &hear);
  subscriber.waitForInitDone();
  EXPECT_THAT(calls().all(), ElementsAre("dds create_subscriber", create_topic(), "dds get_default_datareader_qos",
                                         "dds create_datareader"));
  EXPECT_EQ(output_.out(), "");
}

TEST_F(DdsSubscriberTest, AllIsMadeWithAllStatusesAndOnlyTheReaderHasAListener) {
  const VoidSubscriber subscriber(TOPIC, &hear);
  subscriber.waitForInitDone();
  EXPECT_THAT(dds_.masks(), ElementsAre(0xFFFFFFFFU));
  EXPECT_FALSE(dds_.listeners_given());
  const DDS::DataReaderListener_var listener = dds_.reader_listener();
  EXPECT_FALSE(CORBA::is_nil(listener.in()));
}

TEST_F(DdsSubscriberTest, TheReaderIsVolatileKeepsAllAndFiltersNothing) {
  const VoidSubscriber subscriber(TOPIC, &hear);
  subscriber.waitForInitDone();
  const DDS::DataReaderQos qos = dds_.reader_qos();
  EXPECT_EQ(qos.durability.kind, DDS::VOLATILE_DURABILITY_QOS);
  EXPECT_EQ(qos.history.kind, DDS::KEEP_ALL_HISTORY_QOS);
  EXPECT_EQ(qos.time_based_filter.minimum_separation.sec, 0);
  EXPECT_EQ(qos.time_based_filter.minimum_separation.nanosec, 0U);
}

TEST_F(DdsSubscriberTest, NoOtherQosFieldDiffersFromTheDefaults) {
  const VoidSubscriber subscriber(TOPIC, &hear);
  subscriber.waitForInitDone();
  const DDS::Subscriber_var plain =
      doubles::real_participant()->create_subscriber(SUBSCRIBER_QOS_DEFAULT, DDS::SubscriberListener::_nil(), 0);
  DDS::DataReaderQos defaults = TheServiceParticipant->initial_DataReaderQos();
  plain->get_default_datareader_qos(defaults);
  doubles::real_participant()->delete_subscriber(plain.in());
  const DDS::DataReaderQos qos = dds_.reader_qos();
  EXPECT_EQ(qos.reliability.kind, defaults.reliability.kind);
  EXPECT_EQ(qos.history.depth, defaults.history.depth);
  EXPECT_EQ(qos.ownership.kind, defaults.ownership.kind);
  EXPECT_EQ(qos.liveliness.kind, defaults.liveliness.kind);
  EXPECT_EQ(qos.resource_limits.max_samples, defaults.resource_limits.max_samples);
  EXPECT_EQ(qos.destination_order.kind, defaults.destination_order.kind);
}

/// The base class alone, for start-up work with other arguments.
class OpenBase : public Varnok::DDS_SubscriberBase<DDS_VoidMessage, void(const char*)> {
public:
  OpenBase() : DDS_SubscriberBase(TOPIC, &hear) {}
};

TEST_F(DdsSubscriberTest, StartUpTakesSeparationAndDurabilityAsGiven) {
  OpenBase base;
  boost::thread([&base] { base.InitSubBase(nullptr, 3, 500, DDS::TRANSIENT_LOCAL_DURABILITY_QOS); }).join();
  base.waitForInitDone();
  const DDS::DataReaderQos qos = dds_.reader_qos();
  EXPECT_EQ(qos.durability.kind, DDS::TRANSIENT_LOCAL_DURABILITY_QOS);
  EXPECT_EQ(qos.history.kind, DDS::KEEP_ALL_HISTORY_QOS);
  EXPECT_EQ(qos.time_based_filter.minimum_separation.sec, 3);
  EXPECT_EQ(qos.time_based_filter.minimum_separation.nanosec, 500U);
}

TEST_F(DdsSubscriberTest, ConstructionReturnsWhileStartUpIsUnderWay) {
  Gate gate;
  std::thread::id start_up;
  dds_.runs_first("create_subscriber", [&] {
    start_up = std::this_thread::get_id();
    gate.pass();
  });
  const VoidSubscriber subscriber(TOPIC, &hear);
  EXPECT_EQ(calls().count("dds create_datareader"), 0U);
  gate.open();
  subscriber.waitForInitDone();
  EXPECT_NE(start_up, std::this_thread::get_id());
}

TEST_F(DdsSubscriberTest, WaitForInitDoneReturnsOnlyWhenStartUpIsDone) {
  Gate gate;
  dds_.runs_last("create_datareader", [&] { gate.pass(); });
  const VoidSubscriber subscriber(TOPIC, &hear);
  WaitingThread user([&] { subscriber.waitForInitDone(); });
  EXPECT_TRUE(calls().wait_for("dds create_datareader"));
  EXPECT_TRUE(user.waits());
  gate.open();
  user.join();
  subscriber.waitForInitDone();
}

TEST_F(DdsSubscriberTest, DefaultQosThatCannotBeFetchedIsOneLineAndTheSubscriberWorks) {
  dds_.refuses("get_default_datareader_qos");
  const VoidSubscriber subscriber(TOPIC, &hear);
  subscriber.waitForInitDone();
  EXPECT_EQ(output_.out(), "DDS_Subscriber:: ERROR: create_datareader failed\n");
  AttributeWriter<VoidAttribute> writer(TOPIC);
  writer.wait_for_reader();
  writer.write();
  EXPECT_TRUE(calls().wait_for(HEARD));
}

TEST_F(DdsSubscriberTest, EachSampleCallsTheCallbackOnceOnAThreadOfTheEngine) {
  std::mutex mutex;
  std::set<std::thread::id> threads;
  {
    const VoidSubscriber subscriber(TOPIC, [&](const char* topic) {
      const std::lock_guard<std::mutex> lock(mutex);
      threads.insert(std::this_thread::get_id());
      hear(topic);
    });
    AttributeWriter<VoidAttribute> writer(TOPIC);
    writer.wait_for_reader();
    for (int sample = 0; sample < 5; ++sample) {
      EXPECT_EQ(writer.write(), DDS::RETCODE_OK);
    }
    ASSERT_TRUE(calls().wait_for(HEARD, 5));
  }
  EXPECT_EQ(calls().count(HEARD), 5U);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST_F(DdsSubscriberTest, ASampleWrittenBeforeItJoinedIsNotHeard) {
  AttributeWriter<VoidAttribute> writer(TOPIC);
  writer.write();
  const VoidSubscriber subscriber(TOPIC, &hear);
  subscriber.waitForInitDone();
  writer.wait_for_reader();
  writer.write();
  ASSERT_TRUE(calls().wait_for(HEARD));
  EXPECT_EQ(calls().count(HEARD), 1U);
}

TEST_F(DdsSubscriberTest, ASampleBeforeTheEndOfStartUpIsTakenAtOnceAndHeardAfterwards) {
  Gate gate;
  dds_.runs_last("create_datareader", [&] { gate.pass(); });
  const VoidSubscriber subscriber(TOPIC, &hear);
  ASSERT_TRUE(calls().wait_for("dds create_datareader"));
  const DDS::DataReaderListener_var listener = dds_.reader_listener();
  auto* const reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  const DDS::DataReader_var reference = reader;
  WaitingThread delivery([&] { listener->on_data_available(reader); });
  EXPECT_TRUE(delivery.waits());
  EXPECT_EQ(reader->takes(), 1U);
  EXPECT_EQ(calls().count(HEARD), 0U);
  gate.open();
  delivery.join();
  EXPECT_EQ(calls().count(HEARD), 1U);
}

TEST_F(DdsSubscriberTest, SamplesThatArriveWhileStartUpIsHeldUpAreAllHeardAfterwards) {
  Gate gate;
  dds_.runs_last("create_datareader", [&] { gate.pass(); });
  const VoidSubscriber subscriber(TOPIC, &hear);
  const doubles::OpensAtEnd however_this_ends(gate);
  AttributeWriter<VoidAttribute> writer(TOPIC);
  writer.wait_for_reader();
  for (int sample = 0; sample < 3; ++sample) {
    EXPECT_EQ(writer.write(), DDS::RETCODE_OK);
  }
  calls().clear();
  calls().record("start-up goes on");
  gate.open();
  EXPECT_TRUE(calls().wait_for(HEARD, 3));
  EXPECT_THAT(calls().all(), ElementsAre("start-up goes on", HEARD, HEARD, HEARD));
}

TEST_F(DdsSubscriberTest, DestructionRightAfterConstructionWaitsForStartUp) {
  Gate gate;
  dds_.runs_first("create_subscriber", [&] { gate.pass(); });
  WaitingThread life([] { const VoidSubscriber subscriber(TOPIC, &hear); });
  EXPECT_TRUE(calls().wait_for("dds create_subscriber"));
  EXPECT_TRUE(life.waits());
  EXPECT_THAT(calls().all(), ElementsAre("dds create_subscriber"));
  gate.open();
  life.join();
  EXPECT_THAT(calls().all(), ElementsAre("dds create_subscriber", create_topic(), "dds get_default_datareader_qos",
                                         "dds create_datareader", "dds delete_contained_entities of subscriber",
                                         "dds delete_subscriber", DELETE_TOPIC));
}

TEST_F(DdsSubscriberTest, ASubscriberThatWaitsForItsStartUpHoldsUpEveryLaterDestruction) {
  Gate gate;
  auto ready = std::make_unique<VoidSubscriber>(TOPIC, &hear);
  ready->waitForInitDone();
  dds_.runs_first("create_subscriber", [&] { gate.pass(); });
  auto held_up = std::make_unique<VoidSubscriber>("Halcyra/local/Another", &hear);
  WaitingThread first([&] { held_up.reset(); });
  EXPECT_TRUE(first.waits());
  WaitingThread second([&] { ready.reset(); });
  EXPECT_TRUE(second.waits());
  EXPECT_THAT(calls().starting_with("dds delete"), IsEmpty());
  gate.open();
  first.join();
  second.join();
  EXPECT_THAT(calls().starting_with("dds delete_topic"),
              ElementsAre("dds delete_topic Halcyra/local/Another", DELETE_TOPIC));
}

TEST_F(DdsSubscriberTest, DestructionRemovesReaderSubscriberAndTopicInOrder) {
  {
    const VoidSubscriber subscriber(TOPIC, &hear);
    subscriber.waitForInitDone();
    calls().clear();
  }
  EXPECT_THAT(calls().all(),
              ElementsAre("dds delete_contained_entities of subscriber", "dds delete_subscriber", DELETE_TOPIC));
}

TEST_F(DdsSubscriberTest, AnInstanceThatAWriterDisposesIsReportedAndNotHeard) {
  const VoidSubscriber subscriber(TOPIC, &hear);
  AttributeWriter<VoidAttribute> writer(TOPIC);
  writer.wait_for_reader();
  writer.write();
  ASSERT_TRUE(calls().wait_for(HEARD));
  EXPECT_EQ(writer.dispose(), DDS::RETCODE_OK);
  for (int tries = 0; tries < 10000 && output_.out().empty(); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(output_.out(), DELIVERY + " instance is disposed\n");
  EXPECT_EQ(calls().count(HEARD), 1U);
}

TEST_F(DdsSubscriberTest, AnInstanceThatItsLastWriterLeavesIsReportedAndNotHeard) {
  const VoidSubscriber subscriber(TOPIC, &hear);
  AttributeWriter<VoidAttribute> writer(TOPIC, false);
  writer.wait_for_reader();
  writer.write();
  ASSERT_TRUE(calls().wait_for(HEARD));
  EXPECT_EQ(writer.unregister(), DDS::RETCODE_OK);
  for (int tries = 0; tries < 10000 && output_.out().empty(); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(output_.out(), DELIVERY + " instance is unregistered\n");
  EXPECT_EQ(calls().count(HEARD), 1U);
}

// The last test: OpenDDS may stop sending for good when a reader leaves while a sample goes out to it.
TEST_F(DdsSubscriberTest, DestructionWhileDataArrivesEndsTheCallsAndNothingElse) {
  const std::vector<std::string> heard_by{"heard by 0", "heard by 1", "heard by 2", "heard by 3", "heard by 4"};
  std::vector<std::unique_ptr<VoidSubscriber>> subscribers;
  for (const std::string& heard : heard_by) {
    subscribers.push_back(std::make_unique<VoidSubscriber>(TOPIC, [&](const char*) { calls().record(heard); }));
  }
  AttributeWriter<VoidAttribute> writer(TOPIC);
  std::atomic<bool> enough{false};
  std::atomic<unsigned int> written{0};
  const std::future<void> writing = std::async(std::launch::async, [&] {
    while (!enough) {
      writer.write();
      ++written;
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  });
  for (const std::string& heard : heard_by) {
    EXPECT_TRUE(calls().wait_for(heard));
  }
  std::vector<unsigned int> counts;
  for (std::size_t i = 0; i < subscribers.size(); ++i) {
    subscribers[i].reset();
    counts.push_back(calls().count(heard_by[i]));
  }
  const unsigned int then = written;
  while (written < then + 100) {
    std::this_thread::yield();
  }
  enough = true;
  writing.wait();
  for (std::size_t i = 0; i < counts.size(); ++i) {
    EXPECT_EQ(calls().count(heard_by[i]), counts[i]) << heard_by[i];
  }
}

}  // namespace
