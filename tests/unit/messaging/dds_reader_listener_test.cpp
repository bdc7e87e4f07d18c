#include <gmock/gmock.h>

#include <type_traits>

#include "messaging/dds_subscriber.h"
#include "tests/doubles/captured_output.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/fake_varnok.h"
#include "tests/unit/messaging/attribute_topic.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using doubles::ScriptedReader;
using testing::ElementsAre;
using testing::IsEmpty;
using Varnok::DDS_Subscriber;
using Varnok::DDS_VoidMessage;
using Listener = Varnok::DDS_DataReaderListener<DDS_VoidMessage>;

const char TOPIC[] = "Halcyra/local/UIDoneLoading";
const std::string SIGNATURE =
    "void Varnok::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) [with T = Varnok::DDS_VoidMessage]";

using ScriptedReaderVar = ScriptedReader::_var_type;

/// A started subscriber and its listener.
class DdsReaderListenerTest : public testing::Test {
protected:
  DdsReaderListenerTest() {
    doubles::reset_framework();
    calls().clear();
    subscriber_ = std::make_unique<DDS_Subscriber<DDS_VoidMessage>>(
        TOPIC, [this](const char* topic) { heard_.push_back(topic); });
    subscriber_->waitForInitDone();
    listener_ = dds_.reader_listener();
  }
  ~DdsReaderListenerTest() override { listener_ = DDS::DataReaderListener::_nil(); }

  /// The text of the listener's exception for a reader that returns this; "" if it throws nothing.
  std::string thrown(DDS::ReturnCode_t result, bool valid, DDS::InstanceStateKind state) {
    const DDS::DataReader_var reader = new ScriptedReader(result, valid, state);
    try {
      listener_->on_data_available(reader.in());
    } catch (const Varnok::Runtime_errors::Generic& error) {
      return error.what();
    }
    return "";
  }
  void expect_silence() { EXPECT_EQ(output_.out() + output_.err(), ""); }

  std::vector<std::string> heard_;
  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  CapturedOutput output_;
  std::unique_ptr<DDS_Subscriber<DDS_VoidMessage>> subscriber_;
  DDS::DataReaderListener_var listener_;
};

TEST_F(DdsReaderListenerTest, AValidSampleCallsTheCallbackWithTheTopicsName) {
  EXPECT_EQ(thrown(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE), "");
  EXPECT_THAT(heard_, ElementsAre(TOPIC));
  expect_silence();
}

TEST_F(DdsReaderListenerTest, AValidSampleCountsWhateverItsInstanceStateIs) {
  EXPECT_EQ(thrown(DDS::RETCODE_OK, true, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE), "");
  EXPECT_THAT(heard_, ElementsAre(TOPIC));
  expect_silence();
}

TEST_F(DdsReaderListenerTest, OneSampleIsTakenANotification) {
  auto* const reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  const DDS::DataReader_var reference = reader;
  listener_->on_data_available(reader);
  EXPECT_EQ(reader->takes(), 1U);
  listener_->on_data_available(reader);
  EXPECT_EQ(reader->takes(), 2U);
  EXPECT_THAT(heard_, ElementsAre(TOPIC, TOPIC));
}

TEST_F(DdsReaderListenerTest, ANotificationWithoutDataThrows) {
  EXPECT_EQ(thrown(DDS::RETCODE_NO_DATA, true, DDS::ALIVE_INSTANCE_STATE), SIGNATURE + " take_next_sample error.");
  EXPECT_THAT(heard_, IsEmpty());
  expect_silence();
}

TEST_F(DdsReaderListenerTest, ATakeThatFailsThrows) {
  for (const DDS::ReturnCode_t result : {DDS::RETCODE_ERROR, DDS::RETCODE_ALREADY_DELETED}) {
    EXPECT_EQ(thrown(result, true, DDS::ALIVE_INSTANCE_STATE), SIGNATURE + " take_next_sample error.");
  }
  EXPECT_THAT(heard_, IsEmpty());
}

TEST_F(DdsReaderListenerTest, ADisposedInstanceIsOneLineOnStandardOutput) {
  EXPECT_EQ(thrown(DDS::RETCODE_OK, false, DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE), "");
  EXPECT_EQ(output_.out(), SIGNATURE + " instance is disposed\n");
  EXPECT_EQ(output_.err(), "");
  EXPECT_THAT(heard_, IsEmpty());
}

TEST_F(DdsReaderListenerTest, AnInstanceWithoutWritersIsOneLineOnStandardOutput) {
  EXPECT_EQ(thrown(DDS::RETCODE_OK, false, DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE), "");
  EXPECT_EQ(output_.out(), SIGNATURE + " instance is unregistered\n");
  EXPECT_EQ(output_.err(), "");
  EXPECT_THAT(heard_, IsEmpty());
}

TEST_F(DdsReaderListenerTest, AnyOtherInstanceStateWithoutDataThrows) {
  for (const DDS::InstanceStateKind state :
       {DDS::ALIVE_INSTANCE_STATE, DDS::InstanceStateKind(0), DDS::InstanceStateKind(6), DDS::InstanceStateKind(8)}) {
    EXPECT_EQ(thrown(DDS::RETCODE_OK, false, state), SIGNATURE + " ERROR: received unknown instance state") << state;
  }
  EXPECT_THAT(heard_, IsEmpty());
  expect_silence();
}

TEST_F(DdsReaderListenerTest, AReaderOfAnotherTypeIsPassedOver) {
  const AttributeReader<BooleanAttribute> other("Halcyra/local/ExternalVoltage");
  listener_->on_data_available(other.reader());
  listener_->on_data_available(DDS::DataReader::_nil());
  EXPECT_THAT(heard_, IsEmpty());
  expect_silence();
}

TEST_F(DdsReaderListenerTest, EachDeliveryReleasesTheReaderOfTheOneBefore) {
  const unsigned int before = ScriptedReader::alive();
  thrown(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  EXPECT_EQ(ScriptedReader::alive(), before + 1) << "the last one is kept";
  thrown(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  EXPECT_EQ(ScriptedReader::alive(), before + 1);
}

TEST_F(DdsReaderListenerTest, TheSixOtherNotificationsDoNothing) {
  const DDS::DataReader_var reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  listener_->on_requested_deadline_missed(reader.in(), DDS::RequestedDeadlineMissedStatus());
  listener_->on_requested_incompatible_qos(reader.in(), DDS::RequestedIncompatibleQosStatus());
  listener_->on_sample_rejected(reader.in(), DDS::SampleRejectedStatus());
  listener_->on_liveliness_changed(reader.in(), DDS::LivelinessChangedStatus());
  listener_->on_subscription_matched(reader.in(), DDS::SubscriptionMatchedStatus());
  listener_->on_sample_lost(reader.in(), DDS::SampleLostStatus());
  EXPECT_THAT(heard_, IsEmpty());
  expect_silence();
}

TEST_F(DdsReaderListenerTest, WithoutASubscriberNothingIsTaken) {
  Listener unattached;
  auto* const reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  const DDS::DataReader_var reference = reader;
  unattached.on_data_available(reader);
  EXPECT_EQ(reader->takes(), 0U);
}

TEST(DdsReaderListenerCallbackTest, AnEmptyCallbackThrowsBadFunctionCall) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  const DDS_Subscriber<DDS_VoidMessage> subscriber(TOPIC, boost::function<void(const char*)>());
  subscriber.waitForInitDone();
  const DDS::DataReaderListener_var listener = dds.reader_listener();
  const DDS::DataReader_var reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  try {
    listener->on_data_available(reader.in());
    FAIL() << "nothing was thrown";
  } catch (const boost::bad_function_call& error) {
    EXPECT_STREQ(error.what(), "call to empty boost::function");
  }
}

TEST(DdsReaderListenerCallbackTest, AnExceptionOfTheCallbackGoesBackToTheEngine) {
  FakeDds dds;
  const ParticipantInUse in_use(dds.participant());
  const DDS_Subscriber<DDS_VoidMessage> subscriber(TOPIC, [](const char*) { throw std::out_of_range("callback"); });
  subscriber.waitForInitDone();
  const DDS::DataReaderListener_var listener = dds.reader_listener();
  const DDS::DataReader_var reader = new ScriptedReader(DDS::RETCODE_OK, true, DDS::ALIVE_INSTANCE_STATE);
  EXPECT_THROW(listener->on_data_available(reader.in()), std::out_of_range);
}

}  // namespace
