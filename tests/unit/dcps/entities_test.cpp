#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/recording_listener.h"

namespace dcps_test {
namespace {

class EntitiesTest : public testing::Test {
protected:
  Entities entities_;
};

TEST_F(EntitiesTest, EveryEntityHasAHandleOfItsOwn) {
  const Writer_var writer = entities_.writer(own_topic("handles"));
  const Reader_var reader = entities_.reader(own_topic("handles"));
  EXPECT_NE(entities_.participant->get_instance_handle(), DDS::HANDLE_NIL);
  EXPECT_NE(writer->get_instance_handle(), DDS::HANDLE_NIL);
  EXPECT_NE(writer->get_instance_handle(), reader->get_instance_handle());
  EXPECT_NE(entities_.publisher->get_instance_handle(), entities_.subscriber->get_instance_handle());
}

TEST_F(EntitiesTest, OwnersWithWritersOrReadersAreNotDeleted) {
  const Writer_var writer = entities_.writer(own_topic("owners"));
  const Reader_var reader = entities_.reader(own_topic("owners"));
  EXPECT_EQ(entities_.participant->delete_publisher(entities_.publisher), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(entities_.participant->delete_subscriber(entities_.subscriber), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(entities_.factory->delete_participant(entities_.participant), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(entities_.publisher->delete_contained_entities(), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.subscriber->delete_contained_entities(), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_publisher(entities_.publisher), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_subscriber(entities_.subscriber), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_publisher(entities_.publisher), DDS::RETCODE_ERROR);
  EXPECT_EQ(entities_.participant->delete_subscriber(entities_.subscriber), DDS::RETCODE_ERROR);
}

TEST_F(EntitiesTest, APublisherIsUsableAfterItsEntitiesAreDeleted) {
  const Writer_var first = entities_.writer(own_topic("again"));
  entities_.publisher->delete_contained_entities();
  EXPECT_EQ(first->write(numbered(1), DDS::HANDLE_NIL), DDS::RETCODE_ERROR);
  const Writer_var second = entities_.writer(own_topic("again"));
  EXPECT_EQ(second->write(numbered(1), DDS::HANDLE_NIL), DDS::RETCODE_OK);
}

TEST_F(EntitiesTest, ATopicInUseIsNotDeleted) {
  const DDS::Topic_var topic = entities_.topic(own_topic("in_use"));
  const DDS::DataWriter_var writer = entities_.publisher->create_datawriter(topic, writer_qos(), nullptr, ALL);
  EXPECT_EQ(entities_.participant->delete_topic(topic), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(entities_.publisher->delete_datawriter(writer), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_topic(topic), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_topic(topic), DDS::RETCODE_ERROR);
}

TEST_F(EntitiesTest, TheSameTopicIsSharedAndDeletedAsOftenAsMade) {
  const DDS::Topic_var first = entities_.topic(own_topic("shared"));
  const DDS::Topic_var second = entities_.topic(own_topic("shared"));
  EXPECT_EQ(first.in(), second.in());
  EXPECT_EQ(entities_.participant->delete_topic(first), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_topic(second), DDS::RETCODE_OK);
  EXPECT_EQ(entities_.participant->delete_topic(second), DDS::RETCODE_ERROR);
}

TEST_F(EntitiesTest, ATopicHasItsNameAndType) {
  const DDS::Topic_var topic = entities_.topic(own_topic("named"));
  const CORBA::String_var name = topic->get_name();
  const CORBA::String_var type = topic->get_type_name();
  EXPECT_EQ(own_topic("named"), name.in());
  EXPECT_STREQ(type.in(), "Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_EQ(entities_.participant->get_domain_id(), own_domain());
}

TEST_F(EntitiesTest, ATopicOfAnotherTypeIsRefused) {
  const DDS::Topic_var topic = entities_.topic(own_topic("taken"));
  const DDS::Topic_var other =
      entities_.participant->create_topic(own_topic("taken").c_str(), "unknown", TOPIC_QOS_DEFAULT, nullptr, ALL);
  EXPECT_TRUE(CORBA::is_nil(other));
}

TEST_F(EntitiesTest, EntitiesOfOthersAreRefused) {
  Entities others;
  const Writer_var writer = entities_.writer(own_topic("others"));
  const Reader_var reader = entities_.reader(own_topic("others"));
  const DDS::Topic_var topic = entities_.topic(own_topic("others"));
  EXPECT_EQ(others.publisher->delete_datawriter(writer), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(others.subscriber->delete_datareader(reader), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(others.participant->delete_topic(topic), DDS::RETCODE_PRECONDITION_NOT_MET);
  EXPECT_EQ(others.participant->delete_publisher(entities_.publisher), DDS::RETCODE_PRECONDITION_NOT_MET);
}

TEST_F(EntitiesTest, NilIsRefused) {
  EXPECT_EQ(entities_.participant->delete_publisher(nullptr), DDS::RETCODE_ERROR);
  EXPECT_EQ(entities_.participant->delete_subscriber(nullptr), DDS::RETCODE_ERROR);
  EXPECT_EQ(entities_.participant->delete_topic(nullptr), DDS::RETCODE_ERROR);
  EXPECT_EQ(entities_.publisher->delete_datawriter(nullptr), DDS::RETCODE_ERROR);
  EXPECT_EQ(entities_.subscriber->delete_datareader(nullptr), DDS::RETCODE_ERROR);
  EXPECT_EQ(entities_.factory->delete_participant(nullptr), DDS::RETCODE_BAD_PARAMETER);
  const DDS::DataWriter_var writer = entities_.publisher->create_datawriter(nullptr, writer_qos(), nullptr, ALL);
  const DDS::DataReader_var reader = entities_.subscriber->create_datareader(nullptr, reader_qos(), nullptr, ALL);
  EXPECT_TRUE(CORBA::is_nil(writer));
  EXPECT_TRUE(CORBA::is_nil(reader));
}

TEST(Factory, DeletesAParticipantOnce) {
  const DDS::DomainParticipantFactory_var factory = TheParticipantFactory;
  const DDS::DomainParticipant_var made =
      factory->create_participant(own_domain(), PARTICIPANT_QOS_DEFAULT, nullptr, ALL);
  EXPECT_EQ(factory->delete_participant(made), DDS::RETCODE_OK);
  EXPECT_EQ(factory->delete_participant(made), DDS::RETCODE_ERROR);
}

TEST(Factory, RefusesADomainThatCannotBe) {
  const DDS::DomainParticipantFactory_var factory = TheParticipantFactory;
  for (const DDS::DomainId_t domain : {-1, 100000}) {
    const DDS::DomainParticipant_var made = factory->create_participant(domain, PARTICIPANT_QOS_DEFAULT, nullptr, ALL);
    EXPECT_TRUE(CORBA::is_nil(made)) << domain;
  }
}

TEST(StartUp, TheInitialisersSucceed) {
  EXPECT_EQ(TAO_POA_Initializer::init(), 0);
  EXPECT_EQ(TAO_Requires_POA_Initializer, 0);
  EXPECT_EQ(OpenDDS::DCPS::MonitorFactory::service_initialize(), 0);
  EXPECT_EQ(OpenDDS::DCPS::OpenDDS_Requires_MonitorFactory_Initializer, 0);
}

}  // namespace
}  // namespace dcps_test
