#pragma once

#include <dds/DCPS/Service_Participant.h>

/// The QoS of entities made without further wishes.
#define PARTICIPANT_QOS_DEFAULT DDS::DomainParticipantQos()
#define TOPIC_QOS_DEFAULT DDS::TopicQos()
#define PUBLISHER_QOS_DEFAULT DDS::PublisherQos()
#define SUBSCRIBER_QOS_DEFAULT DDS::SubscriberQos()
#define DATAWRITER_QOS_DEFAULT TheServiceParticipant->initial_DataWriterQos()
#define DATAREADER_QOS_DEFAULT TheServiceParticipant->initial_DataReaderQos()
