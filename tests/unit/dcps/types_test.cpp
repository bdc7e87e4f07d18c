#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"

namespace dcps_test {
namespace {

using OtherTypeSupport_var = Varnok::QTNN_DDS::ATTR_VOIDTypeSupport_var;
using OtherTypeSupportImpl = Varnok::QTNN_DDS::ATTR_VOIDTypeSupportImpl;

class TypesTest : public testing::Test {
protected:
  TypesTest() : factory_(TheParticipantFactory) {
    participant_ = factory_->create_participant(own_domain(), PARTICIPANT_QOS_DEFAULT, nullptr, ALL);
  }
  ~TypesTest() override {
    participant_->delete_contained_entities();
    factory_->delete_participant(participant_);
  }

  DDS::Topic_ptr topic_of_type(const char* type_name) {
    return participant_->create_topic(own_topic("typed").c_str(), type_name, TOPIC_QOS_DEFAULT, nullptr, ALL);
  }

  DDS::DomainParticipantFactory_var factory_;
  DDS::DomainParticipant_var participant_;
  TypeSupport_var type_ = new TypeSupportImpl;
  OtherTypeSupport_var other_ = new OtherTypeSupportImpl;
};

TEST_F(TypesTest, ATypeHasItsScopedName) {
  const CORBA::String_var name = type_->get_type_name();
  const CORBA::String_var other = other_->get_type_name();
  EXPECT_STREQ(name.in(), "Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_STREQ(other.in(), "Varnok::QTNN_DDS::ATTR_VOID");
}

TEST_F(TypesTest, NoNameMeansItsOwn) {
  ASSERT_EQ(type_->register_type(participant_, ""), DDS::RETCODE_OK);
  ASSERT_EQ(other_->register_type(participant_, nullptr), DDS::RETCODE_OK);
  const DDS::Topic_var topic = topic_of_type("Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_FALSE(CORBA::is_nil(topic));
}

TEST_F(TypesTest, AGivenNameIsTheTopicsTypeName) {
  ASSERT_EQ(type_->register_type(participant_, "Switch"), DDS::RETCODE_OK);
  const DDS::Topic_var by_own_name = topic_of_type("Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_TRUE(CORBA::is_nil(by_own_name));
  const DDS::Topic_var topic = topic_of_type("Switch");
  ASSERT_FALSE(CORBA::is_nil(topic));
  const CORBA::String_var name = topic->get_type_name();
  EXPECT_STREQ(name.in(), "Switch");
}

TEST_F(TypesTest, RegisteringAgainIsFine) {
  const TypeSupport_var again = new TypeSupportImpl;
  EXPECT_EQ(type_->register_type(participant_, ""), DDS::RETCODE_OK);
  EXPECT_EQ(type_->register_type(participant_, ""), DDS::RETCODE_OK);
  EXPECT_EQ(again->register_type(participant_, ""), DDS::RETCODE_OK);
}

TEST_F(TypesTest, ANameThatStandsForAnotherTypeIsRefused) {
  ASSERT_EQ(other_->register_type(participant_, "Varnok::QTNN_DDS::ATTR_BOOLEAN"), DDS::RETCODE_OK);
  EXPECT_EQ(type_->register_type(participant_, ""), DDS::RETCODE_ERROR);
  EXPECT_EQ(type_->register_type(participant_, "Switch"), DDS::RETCODE_OK);
}

TEST_F(TypesTest, NoParticipantIsRefused) {
  EXPECT_EQ(type_->register_type(DDS::DomainParticipant::_nil(), ""), DDS::RETCODE_BAD_PARAMETER);
}

TEST_F(TypesTest, AnUnregisteredTypeMakesNoTopic) {
  const DDS::Topic_var topic = topic_of_type("Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_TRUE(CORBA::is_nil(topic));
}

TEST_F(TypesTest, TypesAreForgottenWithTheParticipantsEntities) {
  ASSERT_EQ(type_->register_type(participant_, ""), DDS::RETCODE_OK);
  participant_->delete_contained_entities();
  const DDS::Topic_var topic = topic_of_type("Varnok::QTNN_DDS::ATTR_BOOLEAN");
  EXPECT_TRUE(CORBA::is_nil(topic));
}

/// Forwards the calls that a type support and a topic need; has the real participant's handle, or none.
class StandIn : public OpenDDS::DCPS::LocalObject<DDS::DomainParticipant> {
public:
  StandIn(DDS::DomainParticipant_ptr real, bool has_handle)
      : real_(DDS::DomainParticipant::_duplicate(real)), has_handle_(has_handle) {}

  DDS::InstanceHandle_t get_instance_handle() override {
    return has_handle_ ? real_->get_instance_handle() : DDS::HANDLE_NIL;
  }
  DDS::Publisher_ptr create_publisher(const DDS::PublisherQos&, DDS::PublisherListener_ptr, DDS::StatusMask) override {
    return nullptr;
  }
  DDS::ReturnCode_t delete_publisher(DDS::Publisher_ptr) override { return DDS::RETCODE_ERROR; }
  DDS::Subscriber_ptr create_subscriber(const DDS::SubscriberQos&, DDS::SubscriberListener_ptr,
                                        DDS::StatusMask) override {
    return nullptr;
  }
  DDS::ReturnCode_t delete_subscriber(DDS::Subscriber_ptr) override { return DDS::RETCODE_ERROR; }
  DDS::Topic_ptr create_topic(const char* name, const char* type, const DDS::TopicQos& qos, DDS::TopicListener_ptr l,
                              DDS::StatusMask mask) override {
    return real_->create_topic(name, type, qos, l, mask);
  }
  DDS::ReturnCode_t delete_topic(DDS::Topic_ptr topic) override { return real_->delete_topic(topic); }
  DDS::ReturnCode_t delete_contained_entities() override { return real_->delete_contained_entities(); }
  DDS::DomainId_t get_domain_id() override { return real_->get_domain_id(); }

private:
  const DDS::DomainParticipant_var real_;
  const bool has_handle_;
};

TEST_F(TypesTest, AStandInRegistersWithTheParticipantBehindIt) {
  const DDS::DomainParticipant_var stand_in = new StandIn(participant_, true);
  ASSERT_EQ(type_->register_type(stand_in, ""), DDS::RETCODE_OK);
  const DDS::Topic_var topic = stand_in->create_topic(own_topic("stand_in").c_str(), "Varnok::QTNN_DDS::ATTR_BOOLEAN",
                                                      TOPIC_QOS_DEFAULT, nullptr, ALL);
  EXPECT_FALSE(CORBA::is_nil(topic));
  EXPECT_EQ(other_->register_type(participant_, "Varnok::QTNN_DDS::ATTR_BOOLEAN"), DDS::RETCODE_ERROR);
}

TEST_F(TypesTest, AStandInForNoParticipantIsRejected) {
  const DDS::DomainParticipant_var stand_in = new StandIn(participant_, false);
  EXPECT_EQ(type_->register_type(stand_in, ""), DDS::RETCODE_BAD_PARAMETER);
}

TEST_F(TypesTest, ADeletedParticipantIsRejected) {
  const DDS::DomainParticipant_var deleted =
      factory_->create_participant(own_domain(), PARTICIPANT_QOS_DEFAULT, nullptr, ALL);
  ASSERT_EQ(factory_->delete_participant(deleted), DDS::RETCODE_OK);
  EXPECT_EQ(type_->register_type(deleted, ""), DDS::RETCODE_BAD_PARAMETER);
}

}  // namespace
}  // namespace dcps_test
