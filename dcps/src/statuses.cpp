#include "dcps/src/statuses.h"

namespace dcps {

namespace {

static_assert(-DDS_RETCODE_NO_DATA == DDS::RETCODE_NO_DATA);
static_assert(-DDS_RETCODE_TIMEOUT == DDS::RETCODE_TIMEOUT);
static_assert(-DDS_RETCODE_ILLEGAL_OPERATION == DDS::RETCODE_ILLEGAL_OPERATION);
static_assert(int{DDS_RELIABILITY_QOS_POLICY_ID} == DDS::RELIABILITY_QOS_POLICY_ID);
static_assert(int{DDS_DESTINATIONORDER_QOS_POLICY_ID} == DDS::DESTINATIONORDER_QOS_POLICY_ID);

CORBA::Long count(uint32_t number) {
  return static_cast<CORBA::Long>(number);
}

}  // namespace

DDS::ReturnCode_t to_return_code(dds_return_t result) {
  if (result >= 0) {
    return DDS::RETCODE_OK;
  }
  return result < DDS_RETCODE_ILLEGAL_OPERATION ? DDS::RETCODE_ERROR : -result;
}

DDS::Time_t to_dcps(dds_time_t time) {
  return {static_cast<CORBA::Long>(time / DDS_NSECS_IN_SEC), static_cast<CORBA::ULong>(time % DDS_NSECS_IN_SEC)};
}

DDS::PublicationMatchedStatus to_dcps(const dds_publication_matched_status_t& status) {
  return {count(status.total_count), status.total_count_change, count(status.current_count),
          status.current_count_change};
}

DDS::SubscriptionMatchedStatus to_dcps(const dds_subscription_matched_status_t& status) {
  return {count(status.total_count), status.total_count_change, count(status.current_count),
          status.current_count_change};
}

DDS::RequestedDeadlineMissedStatus to_dcps(const dds_requested_deadline_missed_status_t& status) {
  return {count(status.total_count), status.total_count_change};
}

DDS::RequestedIncompatibleQosStatus to_dcps(const dds_requested_incompatible_qos_status_t& status) {
  return {count(status.total_count), status.total_count_change, static_cast<DDS::QosPolicyId_t>(status.last_policy_id)};
}

DDS::LivelinessChangedStatus to_dcps(const dds_liveliness_changed_status_t& status) {
  return {count(status.alive_count), count(status.not_alive_count), status.alive_count_change,
          status.not_alive_count_change};
}

DDS::SampleLostStatus to_dcps(const dds_sample_lost_status_t& status) {
  return {count(status.total_count), status.total_count_change};
}

DDS::SampleRejectedStatus to_dcps(const dds_sample_rejected_status_t& status) {
  return {count(status.total_count), status.total_count_change,
          static_cast<DDS::SampleRejectedStatusKind>(status.last_reason)};
}

}  // namespace dcps
