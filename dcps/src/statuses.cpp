#include "dcps/src/statuses.h"

namespace dcps {

namespace {

static_assert(int{DDS_RELIABILITY_QOS_POLICY_ID} == DDS::RELIABILITY_QOS_POLICY_ID);
static_assert(int{DDS_DESTINATIONORDER_QOS_POLICY_ID} == DDS::DESTINATIONORDER_QOS_POLICY_ID);

DDS::QosPolicyId_t policy(uint32_t number) {
  return static_cast<DDS::QosPolicyId_t>(number);
}

CORBA::Long count(uint32_t number) {
  return static_cast<CORBA::Long>(number);
}

}  // namespace

DDS::PublicationMatchedStatus to_dcps(const dds_publication_matched_status_t& status) {
  return {count(status.total_count), status.total_count_change, count(status.current_count),
          status.current_count_change};
}

DDS::SubscriptionMatchedStatus to_dcps(const dds_subscription_matched_status_t& status) {
  return {count(status.total_count), status.total_count_change, count(status.current_count),
          status.current_count_change};
}

DDS::OfferedDeadlineMissedStatus to_dcps(const dds_offered_deadline_missed_status_t& status) {
  return {count(status.total_count), status.total_count_change};
}

DDS::RequestedDeadlineMissedStatus to_dcps(const dds_requested_deadline_missed_status_t& status) {
  return {count(status.total_count), status.total_count_change};
}

DDS::OfferedIncompatibleQosStatus to_dcps(const dds_offered_incompatible_qos_status_t& status) {
  return {count(status.total_count), status.total_count_change, policy(status.last_policy_id)};
}

DDS::RequestedIncompatibleQosStatus to_dcps(const dds_requested_incompatible_qos_status_t& status) {
  return {count(status.total_count), status.total_count_change, policy(status.last_policy_id)};
}

DDS::LivelinessLostStatus to_dcps(const dds_liveliness_lost_status_t& status) {
  return {count(status.total_count), status.total_count_change};
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
