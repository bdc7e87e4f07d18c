#pragma once

#include <dds/DdsDcpsCoreC.h>

/// The quality of service of each kind of entity: the policies that it has.
namespace DDS {

struct TopicQos {
  DurabilityQosPolicy durability;
  DeadlineQosPolicy deadline;
  LatencyBudgetQosPolicy latency_budget;
  LivelinessQosPolicy liveliness;
  ReliabilityQosPolicy reliability;
  DestinationOrderQosPolicy destination_order;
  HistoryQosPolicy history;
  ResourceLimitsQosPolicy resource_limits;
  TransportPriorityQosPolicy transport_priority;
  LifespanQosPolicy lifespan;
  OwnershipQosPolicy ownership;
};

struct DataWriterQos {
  DurabilityQosPolicy durability;
  DeadlineQosPolicy deadline;
  LatencyBudgetQosPolicy latency_budget;
  LivelinessQosPolicy liveliness;
  ReliabilityQosPolicy reliability;
  DestinationOrderQosPolicy destination_order;
  HistoryQosPolicy history;
  ResourceLimitsQosPolicy resource_limits;
  TransportPriorityQosPolicy transport_priority;
  LifespanQosPolicy lifespan;
  OwnershipQosPolicy ownership;
  OwnershipStrengthQosPolicy ownership_strength;
  WriterDataLifecycleQosPolicy writer_data_lifecycle;
};

struct DataReaderQos {
  DurabilityQosPolicy durability;
  DeadlineQosPolicy deadline;
  LatencyBudgetQosPolicy latency_budget;
  LivelinessQosPolicy liveliness;
  ReliabilityQosPolicy reliability;
  DestinationOrderQosPolicy destination_order;
  HistoryQosPolicy history;
  ResourceLimitsQosPolicy resource_limits;
  OwnershipQosPolicy ownership;
  TimeBasedFilterQosPolicy time_based_filter;
  ReaderDataLifecycleQosPolicy reader_data_lifecycle;
};

struct PublisherQos {
  PresentationQosPolicy presentation;
};

struct SubscriberQos {
  PresentationQosPolicy presentation;
};

struct DomainParticipantQos {};

}  // namespace DDS
