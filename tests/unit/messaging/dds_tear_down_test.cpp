#include <gmock/gmock.h>

#include <memory>

#include "messaging/dds_publisher.h"
#include "messaging/dds_subscriber.h"
#include "tests/doubles/captured_output.h"
#include "tests/doubles/failing_allocation.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/fake_varnok.h"
#include "tests/unit/messaging/attribute_topic.h"

// References that publisher and subscriber release before they delete their entities, and results that they ignore.

namespace {

using doubles::calls;
using doubles::Calls;
using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using doubles::ReleaseWatch;
using doubles::ScriptedReader;
using testing::ElementsAre;
using Publisher = Varnok::DDS_Publisher<bool>;
using Subscriber = Varnok::DDS_Subscriber<Varnok::DDS_VoidMessage>;

const char VOLTAGE[] = "Halcyra/local/ExternalVoltage";
const char DONE_LOADING[] = "Halcyra/local/UIDoneLoading";

void ignore(const char*) {}

class DdsTearDownTest : public testing::Test {
protected:
  DdsTearDownTest() {
    doubles::reset_framework();
    calls().clear();
  }

  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  CapturedOutput output_;
};

TEST_F(DdsTearDownTest, APublisherHasLetGoOfItsWriterWhenItIsDeleted) {
  auto publisher = std::make_unique<Publisher>(VOLTAGE);
  EXPECT_EQ(dds_.living_writers(), 1U);
  unsigned int living = 99;
  dds_.runs_first("delete_publisher", [&] { living = dds_.living_writers(); });
  publisher.reset();
  EXPECT_EQ(living, 0U);
}

// The participant keeps the first type support of each type.
TEST_F(DdsTearDownTest, APublisherHasLetGoOfItsTypeSupportWhenItIsDeleted) {
  const Publisher first(VOLTAGE);
  const ReleaseWatch type_support(sizeof(BooleanAttribute::TypeSupportImpl));
  auto publisher = std::make_unique<Publisher>(VOLTAGE);
  ASSERT_TRUE(type_support.has_begun());
  EXPECT_FALSE(type_support.has_ended());
  bool released = false;
  dds_.runs_first("delete_publisher", [&] { released = type_support.has_ended(); });
  publisher.reset();
  EXPECT_TRUE(released);
}

TEST_F(DdsTearDownTest, ASubscriberHasLetGoOfItsReaderWhenItIsDeleted) {
  const unsigned int before = ScriptedReader::alive();
  dds_.hands_out(new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE));
  auto subscriber = std::make_unique<Subscriber>(DONE_LOADING, &ignore);
  subscriber->waitForInitDone();
  EXPECT_EQ(ScriptedReader::alive(), before + 1);
  unsigned int living = 99;
  dds_.runs_first("delete_subscriber", [&] { living = ScriptedReader::alive(); });
  subscriber.reset();
  EXPECT_EQ(living, before);
}

TEST_F(DdsTearDownTest, ASubscriberHasLetGoOfTheReaderOfItsLastSampleWhenItIsDeleted) {
  const unsigned int before = ScriptedReader::alive();
  auto subscriber = std::make_unique<Subscriber>(DONE_LOADING, &ignore);
  subscriber->waitForInitDone();
  {
    const DDS::DataReaderListener_var listener = dds_.reader_listener();
    const DDS::DataReader_var reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
    listener->on_data_available(reader.in());
  }
  EXPECT_EQ(ScriptedReader::alive(), before + 1);
  unsigned int living = 99;
  dds_.runs_first("delete_subscriber", [&] { living = ScriptedReader::alive(); });
  subscriber.reset();
  EXPECT_EQ(living, before);
}

TEST_F(DdsTearDownTest, ASubscriberHasLetGoOfItsTypeSupportWhenItIsDeleted) {
  const Subscriber first(DONE_LOADING, &ignore);
  first.waitForInitDone();
  const ReleaseWatch type_support(sizeof(VoidAttribute::TypeSupportImpl));
  auto subscriber = std::make_unique<Subscriber>(DONE_LOADING, &ignore);
  subscriber->waitForInitDone();
  ASSERT_TRUE(type_support.has_begun());
  EXPECT_FALSE(type_support.has_ended());
  bool released = false;
  dds_.runs_first("delete_subscriber", [&] { released = type_support.has_ended(); });
  subscriber.reset();
  EXPECT_TRUE(released);
}

TEST_F(DdsTearDownTest, APublishersDeletionsThatAreRefusedStopNothing) {
  dds_.refuses("delete_contained_entities of publisher").refuses("delete_publisher").refuses("delete_topic");
  { const Publisher publisher(VOLTAGE); }
  EXPECT_THAT(calls().starting_with("dds delete"),
              ElementsAre("dds delete_contained_entities of publisher", "dds delete_publisher",
                          std::string("dds delete_topic ") + VOLTAGE));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(DdsTearDownTest, ASubscribersDeletionsThatAreRefusedStopNothing) {
  dds_.refuses("delete_contained_entities of subscriber").refuses("delete_subscriber").refuses("delete_topic");
  { const Subscriber subscriber(DONE_LOADING, &ignore); }
  EXPECT_THAT(calls().starting_with("dds delete"),
              ElementsAre("dds delete_contained_entities of subscriber", "dds delete_subscriber",
                          std::string("dds delete_topic ") + DONE_LOADING));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(DdsTearDownTest, AnInstanceThatCannotBeRegisteredIsWrittenAllTheSame) {
  dds_.refuses("register_instance");
  Publisher publisher(VOLTAGE);
  calls().clear();
  publisher.sendData(true);
  EXPECT_THAT(calls().all(), ElementsAre("dds register_instance true 0 0 0", "dds write true 0 0 0 0"));
}

}  // namespace
