#pragma once

#include <dcps/local_interface.h>

/// The DDS quality-of-service policies. Durations are seconds and nanoseconds; infinite if both are
/// DURATION_INFINITE_….
namespace DDS {

using InstanceHandle_t = CORBA::Long;
using QosPolicyId_t = CORBA::Long;

struct Duration_t {
  CORBA::Long sec;
  CORBA::ULong nanosec;
};

struct Time_t {
  CORBA::Long sec;  ///< since 1970-01-01 00:00 UTC
  CORBA::ULong nanosec;
};

constexpr CORBA::Long DURATION_INFINITE_SEC = 0x7fffffff;
constexpr CORBA::ULong DURATION_INFINITE_NSEC = 0x7fffffff;
constexpr CORBA::Long DURATION_ZERO_SEC = 0;
constexpr CORBA::ULong DURATION_ZERO_NSEC = 0;
constexpr CORBA::Long LENGTH_UNLIMITED = -1;

enum HistoryQosPolicyKind : int { KEEP_LAST_HISTORY_QOS, KEEP_ALL_HISTORY_QOS };
enum DurabilityQosPolicyKind : int { VOLATILE_DURABILITY_QOS, TRANSIENT_LOCAL_DURABILITY_QOS };
enum LivelinessQosPolicyKind : int {
  AUTOMATIC_LIVELINESS_QOS,
  MANUAL_BY_PARTICIPANT_LIVELINESS_QOS,
  MANUAL_BY_TOPIC_LIVELINESS_QOS
};
enum ReliabilityQosPolicyKind : int { BEST_EFFORT_RELIABILITY_QOS, RELIABLE_RELIABILITY_QOS };
enum DestinationOrderQosPolicyKind : int {
  BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS,
  BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS
};
enum OwnershipQosPolicyKind : int { SHARED_OWNERSHIP_QOS, EXCLUSIVE_OWNERSHIP_QOS };

struct DurabilityQosPolicy {
  DurabilityQosPolicyKind kind;
};

struct DeadlineQosPolicy {
  Duration_t period;
};

struct LivelinessQosPolicy {
  LivelinessQosPolicyKind kind;
  Duration_t lease_duration;
};

struct ReliabilityQosPolicy {
  ReliabilityQosPolicyKind kind;
  Duration_t max_blocking_time;  ///< limit of a write that waits for room
};

struct DestinationOrderQosPolicy {
  DestinationOrderQosPolicyKind kind;
};

/// For a transient-local writer, also what a late reader receives.
struct HistoryQosPolicy {
  HistoryQosPolicyKind kind;
  CORBA::Long depth;  ///< samples kept per instance by KEEP_LAST
};

/// Counts, or LENGTH_UNLIMITED.
struct ResourceLimitsQosPolicy {
  CORBA::Long max_samples;
  CORBA::Long max_instances;
  CORBA::Long max_samples_per_instance;
};

struct LifespanQosPolicy {
  Duration_t duration;
};

struct OwnershipQosPolicy {
  OwnershipQosPolicyKind kind;
};

/// Announced to writers; the reader still receives every sample.
struct TimeBasedFilterQosPolicy {
  Duration_t minimum_separation;
};

struct WriterDataLifecycleQosPolicy {
  CORBA::Boolean autodispose_unregistered_instances;
};

}  // namespace DDS
