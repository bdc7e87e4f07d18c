#pragma once

#include <memory>

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

namespace dcps {

/// What OpenDDS gives entities that are made without further wishes.
DDS::TopicQos initial_topic_qos();
DDS::DataWriterQos initial_writer_qos();
DDS::DataReaderQos initial_reader_qos();

/// True for the values of Marked_Default_Qos that stand for the owner's default.
bool is_marked_default(const DDS::TopicQos& qos);
bool is_marked_default(const DDS::DataWriterQos& qos);
bool is_marked_default(const DDS::DataReaderQos& qos);
bool is_marked_default(const DDS::PublisherQos& qos);
bool is_marked_default(const DDS::SubscriberQos& qos);
/// True for those that stand for the default with the topic's policies.
bool is_marked_use_topic(const DDS::DataWriterQos& qos);
bool is_marked_use_topic(const DDS::DataReaderQos& qos);

/// Puts the topic's policies in the place of the like ones.
void copy_from_topic(DDS::DataWriterQos& qos, const DDS::TopicQos& topic);
void copy_from_topic(DDS::DataReaderQos& qos, const DDS::TopicQos& topic);

bool same(const DDS::TopicQos& one, const DDS::TopicQos& other);

struct CycloneQosDeleter {
  void operator()(dds_qos_t* qos) const { dds_delete_qos(qos); }
};
using CycloneQos = std::unique_ptr<dds_qos_t, CycloneQosDeleter>;

/// The whole of the QoS, so that nothing is left to Cyclone's own defaults.
CycloneQos to_cyclone(const DDS::DataWriterQos& qos);
CycloneQos to_cyclone(const DDS::DataReaderQos& qos);

}  // namespace dcps
