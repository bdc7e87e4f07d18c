#pragma once

#include <dds/DdsDcpsInfoUtilsC.h>
#include <dds/DdsDcpsQosC.h>

/// Return codes, status masks, and the bases of all entities and listeners.
namespace DDS {

using DomainId_t = CORBA::Long;  ///< 0 to 230

constexpr InstanceHandle_t HANDLE_NIL = 0;

using ReturnCode_t = CORBA::Long;
constexpr ReturnCode_t RETCODE_OK = 0;
constexpr ReturnCode_t RETCODE_ERROR = 1;
constexpr ReturnCode_t RETCODE_UNSUPPORTED = 2;
constexpr ReturnCode_t RETCODE_BAD_PARAMETER = 3;
constexpr ReturnCode_t RETCODE_PRECONDITION_NOT_MET = 4;
constexpr ReturnCode_t RETCODE_OUT_OF_RESOURCES = 5;
constexpr ReturnCode_t RETCODE_NOT_ENABLED = 6;
constexpr ReturnCode_t RETCODE_IMMUTABLE_POLICY = 7;
constexpr ReturnCode_t RETCODE_INCONSISTENT_POLICY = 8;
constexpr ReturnCode_t RETCODE_ALREADY_DELETED = 9;
constexpr ReturnCode_t RETCODE_TIMEOUT = 10;
constexpr ReturnCode_t RETCODE_NO_DATA = 11;
constexpr ReturnCode_t RETCODE_ILLEGAL_OPERATION = 12;

using StatusKind = CORBA::ULong;
using StatusMask = CORBA::ULong;  ///< statuses of which a listener is told
constexpr StatusKind INCONSISTENT_TOPIC_STATUS = 1U << 0;
constexpr StatusKind OFFERED_DEADLINE_MISSED_STATUS = 1U << 1;
constexpr StatusKind REQUESTED_DEADLINE_MISSED_STATUS = 1U << 2;
constexpr StatusKind OFFERED_INCOMPATIBLE_QOS_STATUS = 1U << 5;
constexpr StatusKind REQUESTED_INCOMPATIBLE_QOS_STATUS = 1U << 6;
constexpr StatusKind SAMPLE_LOST_STATUS = 1U << 7;
constexpr StatusKind SAMPLE_REJECTED_STATUS = 1U << 8;
constexpr StatusKind DATA_ON_READERS_STATUS = 1U << 9;
constexpr StatusKind DATA_AVAILABLE_STATUS = 1U << 10;
constexpr StatusKind LIVELINESS_LOST_STATUS = 1U << 11;
constexpr StatusKind LIVELINESS_CHANGED_STATUS = 1U << 12;
constexpr StatusKind PUBLICATION_MATCHED_STATUS = 1U << 13;
constexpr StatusKind SUBSCRIPTION_MATCHED_STATUS = 1U << 14;

/// The policies on which a writer and a reader may disagree.
constexpr QosPolicyId_t INVALID_QOS_POLICY_ID = 0;
constexpr QosPolicyId_t DURABILITY_QOS_POLICY_ID = 2;
constexpr QosPolicyId_t DEADLINE_QOS_POLICY_ID = 4;
constexpr QosPolicyId_t LATENCYBUDGET_QOS_POLICY_ID = 5;
constexpr QosPolicyId_t OWNERSHIP_QOS_POLICY_ID = 6;
constexpr QosPolicyId_t LIVELINESS_QOS_POLICY_ID = 8;
constexpr QosPolicyId_t RELIABILITY_QOS_POLICY_ID = 11;
constexpr QosPolicyId_t DESTINATIONORDER_QOS_POLICY_ID = 12;

DCPS_DECLARE_INTERFACE(Listener);
DCPS_DECLARE_INTERFACE(Entity);
DCPS_DECLARE_INTERFACE(TopicDescription);
DCPS_DECLARE_INTERFACE(TopicListener);
DCPS_DECLARE_INTERFACE(Topic);
DCPS_DECLARE_INTERFACE(TypeSupport);
DCPS_DECLARE_INTERFACE(DataWriterListener);
DCPS_DECLARE_INTERFACE(PublisherListener);
DCPS_DECLARE_INTERFACE(DataWriter);
DCPS_DECLARE_INTERFACE(Publisher);
DCPS_DECLARE_INTERFACE(DataReaderListener);
DCPS_DECLARE_INTERFACE(SubscriberListener);
DCPS_DECLARE_INTERFACE(DataReader);
DCPS_DECLARE_INTERFACE(Subscriber);
DCPS_DECLARE_INTERFACE(DomainParticipantListener);
DCPS_DECLARE_INTERFACE(DomainParticipant);
DCPS_DECLARE_INTERFACE(DomainParticipantFactory);

/// Base of the listeners. Their operations run on the engine's threads, those of one entity one after the other. An
/// exception that leaves one ends the process (std::terminate). An entity's deletion waits for a call that is under
/// way.
class __attribute__((visibility("default"))) Listener : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(Listener)
};

/// Base of everything that takes part in a domain. Entities are enabled from the start. All their operations may be
/// called from any thread; an entity that has been deleted refuses them.
class __attribute__((visibility("default"))) Entity : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(Entity)

  virtual ReturnCode_t enable() = 0;
  /// The entity's number in this process, never HANDLE_NIL.
  virtual InstanceHandle_t get_instance_handle() = 0;
};

}  // namespace DDS

namespace OpenDDS::DCPS {

constexpr DDS::StatusMask ALL_STATUS_MASK = 0xffffffff;
constexpr DDS::StatusMask NO_STATUS_MASK = 0;
constexpr DDS::StatusMask DEFAULT_STATUS_MASK = ALL_STATUS_MASK;

}  // namespace OpenDDS::DCPS
