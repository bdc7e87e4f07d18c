#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/recording_listener.h"

namespace dcps_test {
namespace {

class QosTest : public testing::Test {
protected:
  Entities entities_;
};

void expect_endless(const DDS::Duration_t& duration) {
  EXPECT_EQ(duration.sec, DDS::DURATION_INFINITE_SEC);
  EXPECT_EQ(duration.nanosec, DDS::DURATION_INFINITE_NSEC);
}

TEST_F(QosTest, AWriterIsReliableByDefault) {
  DDS::DataWriterQos qos{};
  ASSERT_EQ(entities_.publisher->get_default_datawriter_qos(qos), DDS::RETCODE_OK);
  EXPECT_EQ(qos.reliability.kind, DDS::RELIABLE_RELIABILITY_QOS);
  EXPECT_EQ(qos.reliability.max_blocking_time.sec, 0);
  EXPECT_EQ(qos.reliability.max_blocking_time.nanosec, 100000000U);
  EXPECT_EQ(qos.durability.kind, DDS::VOLATILE_DURABILITY_QOS);
  EXPECT_EQ(qos.history.kind, DDS::KEEP_LAST_HISTORY_QOS);
  EXPECT_EQ(qos.history.depth, 1);
  EXPECT_EQ(qos.resource_limits.max_samples, DDS::LENGTH_UNLIMITED);
  EXPECT_EQ(qos.ownership.kind, DDS::SHARED_OWNERSHIP_QOS);
  EXPECT_EQ(qos.liveliness.kind, DDS::AUTOMATIC_LIVELINESS_QOS);
  EXPECT_TRUE(qos.writer_data_lifecycle.autodispose_unregistered_instances);
  expect_endless(qos.deadline.period);
  expect_endless(qos.lifespan.duration);
  expect_endless(qos.liveliness.lease_duration);
}

TEST_F(QosTest, AReaderIsBestEffortByDefault) {
  DDS::DataReaderQos qos{};
  ASSERT_EQ(entities_.subscriber->get_default_datareader_qos(qos), DDS::RETCODE_OK);
  EXPECT_EQ(qos.reliability.kind, DDS::BEST_EFFORT_RELIABILITY_QOS);
  EXPECT_EQ(qos.durability.kind, DDS::VOLATILE_DURABILITY_QOS);
  EXPECT_EQ(qos.history.kind, DDS::KEEP_LAST_HISTORY_QOS);
  EXPECT_EQ(qos.history.depth, 1);
  EXPECT_EQ(qos.destination_order.kind, DDS::BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS);
  EXPECT_EQ(qos.time_based_filter.minimum_separation.sec, 0);
  EXPECT_EQ(qos.time_based_filter.minimum_separation.nanosec, 0U);
  expect_endless(qos.deadline.period);
}

TEST_F(QosTest, WhatCannotBeIsRefused) {
  DDS::DataWriterQos qos = writer_qos();
  qos.history.depth = 0;
  const DDS::Topic_var topic = entities_.topic(own_topic("bad"));
  const DDS::DataWriter_var writer = entities_.publisher->create_datawriter(topic, qos, nullptr, ALL);
  EXPECT_TRUE(CORBA::is_nil(writer));
  EXPECT_EQ(entities_.participant->delete_topic(topic), DDS::RETCODE_OK);
}

TEST_F(QosTest, AReaderThatAsksForMoreThanTheWriterOffersDoesNotMatch) {
  const Writer_var writer = entities_.writer(own_topic("mismatch"));
  const Reader_var reader = entities_.reader(own_topic("mismatch"), nullptr, durable_reader());
  DDS::PublicationMatchedStatus status{};
  ASSERT_EQ(writer->get_publication_matched_status(status), DDS::RETCODE_OK);
  EXPECT_EQ(status.total_count, 0);
}

TEST_F(QosTest, AReaderThatAsksForLessMatches) {
  const Writer_var writer = entities_.writer(own_topic("match"), durable_writer());
  const Reader_var reader = entities_.reader(own_topic("match"), nullptr, reader_qos());
  DDS::PublicationMatchedStatus of_writer{};
  ASSERT_EQ(writer->get_publication_matched_status(of_writer), DDS::RETCODE_OK);
  EXPECT_EQ(of_writer.current_count, 1);
}

TEST_F(QosTest, OnlyReadersHaveListeners) {
  class Listener : public OpenDDS::DCPS::LocalObject<DDS::DomainParticipantListener>, public QuietListener {
  } listener;
  const DDS::Topic_var topic = entities_.topic(own_topic("listened"));
  const DDS::Topic_var other = entities_.participant->create_topic(own_topic("other").c_str(), entities_.type_name,
                                                                   TOPIC_QOS_DEFAULT, &listener, ALL);
  const DDS::Publisher_var publisher = entities_.participant->create_publisher(PUBLISHER_QOS_DEFAULT, &listener, ALL);
  const DDS::Subscriber_var subscriber =
      entities_.participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, &listener, ALL);
  const DDS::DataWriter_var writer = entities_.publisher->create_datawriter(topic, writer_qos(), &listener, ALL);
  EXPECT_TRUE(CORBA::is_nil(other));
  EXPECT_TRUE(CORBA::is_nil(publisher));
  EXPECT_TRUE(CORBA::is_nil(subscriber));
  EXPECT_TRUE(CORBA::is_nil(writer));
  const DDS::DomainParticipant_var participant =
      entities_.factory->create_participant(own_domain(), PARTICIPANT_QOS_DEFAULT, &listener, ALL);
  EXPECT_TRUE(CORBA::is_nil(participant));
}

}  // namespace
}  // namespace dcps_test
