#pragma once

#include <dds/DdsDcpsCoreC.h>

/// The quality of service of each kind of entity: the policies that have an effect.
namespace DDS {

struct DomainParticipantQos {};
struct TopicQos {};
struct PublisherQos {};
struct SubscriberQos {};

struct DataWriterQos {
  DurabilityQosPolicy durability;
  DeadlineQosPolicy deadline;
  LivelinessQosPolicy liveliness;
  ReliabilityQosPolicy reliability;
  DestinationOrderQosPolicy destination_order;
  HistoryQosPolicy history;
  ResourceLimitsQosPolicy resource_limits;
  LifespanQosPolicy lifespan;
  OwnershipQosPolicy ownership;
  WriterDataLifecycleQosPolicy writer_data_lifecycle;
};

struct DataReaderQos {
  DurabilityQosPolicy durability;
  DeadlineQosPolicy deadline;
  LivelinessQosPolicy liveliness;
  ReliabilityQosPolicy reliability;
  DestinationOrderQosPolicy destination_order;
  HistoryQosPolicy history;
  ResourceLimitsQosPolicy resource_limits;
  OwnershipQosPolicy ownership;
  TimeBasedFilterQosPolicy time_based_filter;
};

}  // namespace DDS
