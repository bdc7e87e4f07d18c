#include "tests/unit/handheld/handheld_under_test.h"
#include "varnok_attributes.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::sent_events;
using testing::ElementsAre;
using testing::IsEmpty;

using Void = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>;

const char LED_CALL[] = "SetSystemLEDStatus 12 0";

class UiDoneLoadingTest : public HandheldTest {};

TEST_F(UiDoneLoadingTest, SetsTheLedToTwelve) {
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL));
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(UiDoneLoadingTest, ASecondMessageSetsTheLedAgain) {
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL, LED_CALL));
}

TEST_F(UiDoneLoadingTest, TheTopicNameIsNotLookedAt) {
  unit_->UIDoneLoadingDDS_SubCallback(nullptr);
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL));
}

TEST_F(UiDoneLoadingTest, ADriverFailureIsOneEventAndNoRetry) {
  driver_.fails("SetSystemLEDStatus");
  const CapturedOutput output;
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), ElementsAre(LED_CALL, "event Handheld_Hardware::UIDoneLoadingDDS_SubCallback()"));
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::UIDoneLoadingDDS_SubCallback()",
                                                       "Power Supply Driver Failure: UI Done Loading")));
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(UiDoneLoadingTest, AnotherExceptionPassesThrough) {
  driver_.runs_first("SetSystemLEDStatus", [] { throw std::out_of_range("led"); });
  EXPECT_THROW(unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading"), std::out_of_range);
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(UiDoneLoadingTest, AnEventThatCannotBeSentPassesThrough) {
  driver_.fails("SetSystemLEDStatus");
  doubles::run_first_in_sends([] { throw std::runtime_error("log full"); });
  EXPECT_THROW(unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading"), std::runtime_error);
}

TEST_F(UiDoneLoadingTest, MessagesThatCameBeforeTheDriverSetTheLedOnceEachWhenItIsMade) {
  AdoptDriver(nullptr);
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  unit_->UIDoneLoadingDDS_SubCallback("Halcyra/local/UIDoneLoading");
  EXPECT_THAT(calls().all(), IsEmpty());
  const CapturedOutput unheard;
  const PlainHandheld next;
  EXPECT_THAT(calls().all(), ElementsAre("psdriver /dev/i2c-3", LED_CALL, LED_CALL));
  const PlainHandheld one_after;
  EXPECT_EQ(calls().count(LED_CALL), 2U) << "an early message counts once";
}

/// Publishes done-loading messages as the user interface does.
class UserInterface {
public:
  UserInterface() {
    DDS::DomainParticipant_ptr const participant = doubles::real_participant();
    const Void::TypeSupport_var type = new Void::TypeSupportImpl;
    type->register_type(participant, "");
    const CORBA::String_var type_name = type->get_type_name();
    topic_ = participant->create_topic("Halcyra/local/UIDoneLoading", type_name.in(), TOPIC_QOS_DEFAULT,
                                       DDS::TopicListener::_nil(), 0);
    publisher_ = participant->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), 0);
    const DDS::DataWriter_var writer =
        publisher_->create_datawriter(topic_.in(), DATAWRITER_QOS_DEFAULT, DDS::DataWriterListener::_nil(), 0);
    writer_ = Void::DataWriter::_narrow(writer.in());
  }
  ~UserInterface() {
    DDS::DomainParticipant_ptr const participant = doubles::real_participant();
    publisher_->delete_contained_entities();
    participant->delete_publisher(publisher_.in());
    participant->delete_topic(topic_.in());
  }
  UserInterface(const UserInterface&) = delete;
  UserInterface& operator=(const UserInterface&) = delete;

  /// Waits until somebody listens. Throws std::runtime_error when nobody does within ten seconds.
  void wait_for_listener() {
    DDS::PublicationMatchedStatus status{};
    for (int tries = 0; tries < 10000; ++tries) {
      writer_->get_publication_matched_status(status);
      if (status.current_count > 0) {
        return;
      }
      boost::this_thread::sleep(boost::get_system_time() + boost::posix_time::milliseconds(1));
    }
    throw std::runtime_error("nobody listens to the user interface");
  }
  void done_loading() { EXPECT_EQ(writer_->write(Void::Sample(), DDS::HANDLE_NIL), DDS::RETCODE_OK); }

private:
  DDS::Topic_var topic_;
  DDS::Publisher_var publisher_;
  Void::DataWriter_var writer_;
};

TEST_F(UiDoneLoadingTest, EachMessageOnTheTopicSetsTheLedOnce) {
  UserInterface user_interface;
  user_interface.wait_for_listener();
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for(LED_CALL, 1));
  user_interface.done_loading();
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for(LED_CALL, 3));
  unit_.reset();
  EXPECT_EQ(calls().count(LED_CALL), 3U);
}

TEST_F(UiDoneLoadingTest, ADriverFailureOnOneMessageLeavesTheNextToSetTheLed) {
  driver_.fails("SetSystemLEDStatus");
  UserInterface user_interface;
  user_interface.wait_for_listener();
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for("event Handheld_Hardware::UIDoneLoadingDDS_SubCallback()"));
  user_interface.done_loading();
  ASSERT_TRUE(calls().wait_for(LED_CALL, 2));
  unit_.reset();
  EXPECT_EQ(sent_events().size(), 1U);
}

}  // namespace
