#include <gtest/gtest.h>

#include "tests/unit/dcps/entities.h"

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
  expect_endless(qos.reader_data_lifecycle.autopurge_disposed_samples_delay);
  expect_endless(qos.reader_data_lifecycle.autopurge_nowriter_samples_delay);
}

TEST_F(QosTest, TheMarkStandsForTheOwnersDefault) {
  DDS::DataWriterQos changed = writer_qos();
  changed.history.depth = 5;
  ASSERT_EQ(entities_.publisher->set_default_datawriter_qos(changed), DDS::RETCODE_OK);
  const Writer_var writer = entities_.writer(own_topic("marked"), DATAWRITER_QOS_DEFAULT);
  DDS::DataWriterQos qos{};
  ASSERT_EQ(writer->get_qos(qos), DDS::RETCODE_OK);
  EXPECT_EQ(qos.history.depth, 5);
  EXPECT_EQ(qos.liveliness.kind, DDS::AUTOMATIC_LIVELINESS_QOS);
}

TEST_F(QosTest, AMarkIsNoDefault) {
  EXPECT_EQ(entities_.publisher->set_default_datawriter_qos(DATAWRITER_QOS_DEFAULT), DDS::RETCODE_INCONSISTENT_POLICY);
  EXPECT_EQ(entities_.publisher->set_default_datawriter_qos(DATAWRITER_QOS_USE_TOPIC_QOS),
            DDS::RETCODE_INCONSISTENT_POLICY);
  EXPECT_EQ(entities_.subscriber->set_default_datareader_qos(DATAREADER_QOS_DEFAULT), DDS::RETCODE_INCONSISTENT_POLICY);
  EXPECT_EQ(entities_.participant->set_default_topic_qos(TOPIC_QOS_DEFAULT), DDS::RETCODE_INCONSISTENT_POLICY);
}

TEST_F(QosTest, TheTopicsPoliciesAreTakenOverWhenAskedFor) {
  DDS::TopicQos topic_qos = TheServiceParticipant->initial_TopicQos();
  topic_qos.history.depth = 7;
  topic_qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
  ASSERT_EQ(entities_.participant->set_default_topic_qos(topic_qos), DDS::RETCODE_OK);
  const Reader_var reader = entities_.reader(own_topic("topic_qos"), nullptr, DATAREADER_QOS_USE_TOPIC_QOS);
  const Writer_var writer = entities_.writer(own_topic("topic_qos"), DATAWRITER_QOS_USE_TOPIC_QOS);
  DDS::DataReaderQos of_reader{};
  DDS::DataWriterQos of_writer{};
  ASSERT_EQ(reader->get_qos(of_reader), DDS::RETCODE_OK);
  ASSERT_EQ(writer->get_qos(of_writer), DDS::RETCODE_OK);
  EXPECT_EQ(of_reader.history.depth, 7);
  EXPECT_EQ(of_reader.reliability.kind, DDS::RELIABLE_RELIABILITY_QOS);
  EXPECT_EQ(of_writer.history.depth, 7);
  EXPECT_TRUE(of_writer.writer_data_lifecycle.autodispose_unregistered_instances);
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
  DDS::SubscriptionMatchedStatus of_reader{};
  ASSERT_EQ(writer->get_publication_matched_status(of_writer), DDS::RETCODE_OK);
  ASSERT_EQ(reader->get_subscription_matched_status(of_reader), DDS::RETCODE_OK);
  EXPECT_EQ(of_writer.current_count, 1);
  EXPECT_EQ(of_reader.current_count, 1);
}

TEST_F(QosTest, OwnersOtherThanOfWritersAndReadersTakeNoListener) {
  class Listener : public OpenDDS::DCPS::LocalObject<DDS::TopicListener> {
    void on_inconsistent_topic(DDS::Topic_ptr, const DDS::InconsistentTopicStatus&) override {}
  } listener;
  const DDS::Topic_var topic = entities_.participant->create_topic(own_topic("listened").c_str(), entities_.type_name,
                                                                   TOPIC_QOS_DEFAULT, &listener, ALL);
  EXPECT_TRUE(CORBA::is_nil(topic));
}

}  // namespace
}  // namespace dcps_test
