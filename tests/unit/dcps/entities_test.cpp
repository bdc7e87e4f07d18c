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

TEST_F(EntitiesTest, EntitiesKnowWhereTheyBelong) {
  const Writer_var writer = entities_.writer(own_topic("belong"));
  const Reader_var reader = entities_.reader(own_topic("belong"));
  const DDS::Publisher_var publisher = writer->get_publisher();
  const DDS::Subscriber_var subscriber = reader->get_subscriber();
  const DDS::DomainParticipant_var participant = publisher->get_participant();
  const DDS::Topic_var topic = writer->get_topic();
  const CORBA::String_var name = topic->get_name();
  const CORBA::String_var type = topic->get_type_name();
  EXPECT_EQ(publisher.in(), entities_.publisher.in());
  EXPECT_EQ(subscriber.in(), entities_.subscriber.in());
  EXPECT_EQ(participant.in(), entities_.participant.in());
  EXPECT_EQ(own_topic("belong"), name.in());
  EXPECT_STREQ(type.in(), "Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_EQ(participant->get_domain_id(), own_domain());
}

TEST_F(EntitiesTest, WritersAndReadersAreFoundByTopicName) {
  const Writer_var writer = entities_.writer(own_topic("lookup"));
  const Reader_var reader = entities_.reader(own_topic("lookup"));
  const DDS::DataWriter_var found_writer = entities_.publisher->lookup_datawriter(own_topic("lookup").c_str());
  const DDS::DataReader_var found_reader = entities_.subscriber->lookup_datareader(own_topic("lookup").c_str());
  const DDS::DataWriter_var none = entities_.publisher->lookup_datawriter("another");
  EXPECT_EQ(found_writer.in(), static_cast<DDS::DataWriter_ptr>(writer.in()));
  EXPECT_EQ(found_reader.in(), static_cast<DDS::DataReader_ptr>(reader.in()));
  EXPECT_TRUE(CORBA::is_nil(none));
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

TEST_F(EntitiesTest, ATopicOfAnotherTypeOrQosIsRefused) {
  const DDS::Topic_var topic = entities_.topic(own_topic("taken"));
  DDS::TopicQos qos = TheServiceParticipant->initial_TopicQos();
  qos.history.depth = 2;
  const std::string name = own_topic("taken");
  const DDS::Topic_var other_qos =
      entities_.participant->create_topic(name.c_str(), entities_.type_name, qos, nullptr, ALL);
  const DDS::Topic_var other_type =
      entities_.participant->create_topic(name.c_str(), "unknown", TOPIC_QOS_DEFAULT, nullptr, ALL);
  EXPECT_TRUE(CORBA::is_nil(other_qos));
  EXPECT_TRUE(CORBA::is_nil(other_type));
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

TEST(Factory, FindsParticipantsByDomain) {
  const DDS::DomainParticipantFactory_var factory = TheParticipantFactory;
  const DDS::DomainId_t domain = 20 + own_domain() % 80;
  EXPECT_TRUE(CORBA::is_nil(DDS::DomainParticipant_var(factory->lookup_participant(domain))));
  const DDS::DomainParticipant_var made = factory->create_participant(domain, PARTICIPANT_QOS_DEFAULT, nullptr, ALL);
  const DDS::DomainParticipant_var found = factory->lookup_participant(domain);
  EXPECT_EQ(found.in(), made.in());
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

TEST(Factory, IsTheSameHoweverItIsAskedFor) {
  char name[] = "program";
  char* arguments[] = {name, nullptr};
  int count = 1;
  const DDS::DomainParticipantFactory_var one = TheParticipantFactory;
  const DDS::DomainParticipantFactory_var other = TheParticipantFactoryWithArgs(count, arguments);
  EXPECT_EQ(one.in(), other.in());
  EXPECT_EQ(count, 1);
}

TEST(Factory, TheServiceEndsAndBeginsAgain) {
  TheServiceParticipant->shutdown();
  EXPECT_TRUE(TheServiceParticipant->is_shut_down());
  const DDS::DomainParticipantFactory_var factory = TheParticipantFactory;
  EXPECT_FALSE(TheServiceParticipant->is_shut_down());
}

TEST(StartUp, TheInitialisersSucceed) {
  EXPECT_EQ(TAO_POA_Initializer::init(), 0);
  EXPECT_EQ(TAO_Requires_POA_Initializer, 0);
  EXPECT_EQ(OpenDDS::DCPS::MonitorFactory::service_initialize(), 0);
  EXPECT_EQ(OpenDDS::DCPS::OpenDDS_Requires_MonitorFactory_Initializer, 0);
}

}  // namespace
}  // namespace dcps_test
