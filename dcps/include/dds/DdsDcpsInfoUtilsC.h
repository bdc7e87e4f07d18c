#pragma once

#include <dds/DdsDcpsCoreC.h>

/// Sample information, and the statuses reported to listeners.
namespace DDS {

using SampleStateKind = CORBA::ULong;
constexpr SampleStateKind READ_SAMPLE_STATE = 1;
constexpr SampleStateKind NOT_READ_SAMPLE_STATE = 2;

using ViewStateKind = CORBA::ULong;
constexpr ViewStateKind NEW_VIEW_STATE = 1;
constexpr ViewStateKind NOT_NEW_VIEW_STATE = 2;

using InstanceStateKind = CORBA::ULong;
constexpr InstanceStateKind ALIVE_INSTANCE_STATE = 1;
constexpr InstanceStateKind NOT_ALIVE_DISPOSED_INSTANCE_STATE = 2;
constexpr InstanceStateKind NOT_ALIVE_NO_WRITERS_INSTANCE_STATE = 4;

struct SampleInfo {
  SampleStateKind sample_state;
  ViewStateKind view_state;
  InstanceStateKind instance_state;
  Time_t source_timestamp;
  InstanceHandle_t instance_handle;
  CORBA::Long disposed_generation_count;
  CORBA::Long no_writers_generation_count;
  CORBA::Boolean valid_data;  ///< false if the entry only reports a change of the instance's state
};

/// Counts are totals since the entity was made; `…_change`: since the listener was last called.
struct SampleLostStatus {
  CORBA::Long total_count;
  CORBA::Long total_count_change;
};

enum SampleRejectedStatusKind : int {
  NOT_REJECTED,
  REJECTED_BY_INSTANCES_LIMIT,
  REJECTED_BY_SAMPLES_LIMIT,
  REJECTED_BY_SAMPLES_PER_INSTANCE_LIMIT
};

struct SampleRejectedStatus {
  CORBA::Long total_count;
  CORBA::Long total_count_change;
  SampleRejectedStatusKind last_reason;
};

struct LivelinessChangedStatus {
  CORBA::Long alive_count;
  CORBA::Long not_alive_count;
  CORBA::Long alive_count_change;
  CORBA::Long not_alive_count_change;
};

struct RequestedDeadlineMissedStatus {
  CORBA::Long total_count;
  CORBA::Long total_count_change;
};

struct RequestedIncompatibleQosStatus {
  CORBA::Long total_count;
  CORBA::Long total_count_change;
  QosPolicyId_t last_policy_id;
};

struct PublicationMatchedStatus {
  CORBA::Long total_count;
  CORBA::Long total_count_change;
  CORBA::Long current_count;
  CORBA::Long current_count_change;
};

struct SubscriptionMatchedStatus {
  CORBA::Long total_count;
  CORBA::Long total_count_change;
  CORBA::Long current_count;
  CORBA::Long current_count_change;
};

}  // namespace DDS
