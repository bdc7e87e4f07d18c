#pragma once

#include <dds/DdsDcpsInfoUtilsC.h>
#include <dds/DdsDcpsQosC.h>

/// Return codes, status masks, and the base classes of entities and listeners.
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
using StatusMask = CORBA::ULong;  ///< statuses that a listener is called for
constexpr StatusKind REQUESTED_DEADLINE_MISSED_STATUS = 1U << 2;
constexpr StatusKind REQUESTED_INCOMPATIBLE_QOS_STATUS = 1U << 6;
constexpr StatusKind SAMPLE_LOST_STATUS = 1U << 7;
constexpr StatusKind SAMPLE_REJECTED_STATUS = 1U << 8;
constexpr StatusKind DATA_AVAILABLE_STATUS = 1U << 10;
constexpr StatusKind LIVELINESS_CHANGED_STATUS = 1U << 12;
constexpr StatusKind SUBSCRIPTION_MATCHED_STATUS = 1U << 14;

/// The policies that can keep a writer and a reader from matching.
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

/// Base of all listeners. A participant calls its listeners on one thread of its own, one after another. An exception
/// from a call ends all calls of that participant's listeners. Deleting an entity waits for its running call.
class __attribute__((visibility("default"))) Listener : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(Listener)
};

/// Base of all entities. Entities are enabled when made. Any thread may call their operations; a deleted entity rejects
/// them.
class __attribute__((visibility("default"))) Entity : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(Entity)

  /// The entity's number in this process; never HANDLE_NIL.
  virtual InstanceHandle_t get_instance_handle() = 0;
};

}  // namespace DDS

namespace OpenDDS::DCPS {

constexpr DDS::StatusMask NO_STATUS_MASK = 0;
constexpr DDS::StatusMask DEFAULT_STATUS_MASK = 0xffffffff;

}  // namespace OpenDDS::DCPS
