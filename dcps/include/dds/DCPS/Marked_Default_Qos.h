#pragma once

#include <dds/DdsDcpsInfrastructureC.h>

namespace OpenDDS::DCPS {

/// QoS values that stand for a default; what they hold besides the mark is not looked at.
class __attribute__((visibility("default"))) Marked_Default_Qos {
public:
  static DDS::DomainParticipantQos marked_default_DomainParticipantQos();
  static DDS::TopicQos marked_default_TopicQos();
  static DDS::DataWriterQos marked_default_DataWriterQos();
  static DDS::PublisherQos marked_default_PublisherQos();
  static DDS::DataReaderQos marked_default_DataReaderQos();
  static DDS::SubscriberQos marked_default_SubscriberQos();
  static DDS::DataWriterQos marked_default_DataWriter_Use_TopicQos();
  static DDS::DataReaderQos marked_default_DataReader_Use_TopicQos();
};

}  // namespace OpenDDS::DCPS

#define PARTICIPANT_QOS_DEFAULT OpenDDS::DCPS::Marked_Default_Qos::marked_default_DomainParticipantQos()
#define TOPIC_QOS_DEFAULT OpenDDS::DCPS::Marked_Default_Qos::marked_default_TopicQos()
#define PUBLISHER_QOS_DEFAULT OpenDDS::DCPS::Marked_Default_Qos::marked_default_PublisherQos()
#define SUBSCRIBER_QOS_DEFAULT OpenDDS::DCPS::Marked_Default_Qos::marked_default_SubscriberQos()
#define DATAWRITER_QOS_DEFAULT OpenDDS::DCPS::Marked_Default_Qos::marked_default_DataWriterQos()
#define DATAREADER_QOS_DEFAULT OpenDDS::DCPS::Marked_Default_Qos::marked_default_DataReaderQos()
#define DATAWRITER_QOS_USE_TOPIC_QOS OpenDDS::DCPS::Marked_Default_Qos::marked_default_DataWriter_Use_TopicQos()
#define DATAREADER_QOS_USE_TOPIC_QOS OpenDDS::DCPS::Marked_Default_Qos::marked_default_DataReader_Use_TopicQos()
