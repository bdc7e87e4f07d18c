#pragma once

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

/// Cyclone's statuses as DCPS has them.
namespace dcps {

DDS::PublicationMatchedStatus to_dcps(const dds_publication_matched_status_t& status);
DDS::SubscriptionMatchedStatus to_dcps(const dds_subscription_matched_status_t& status);
DDS::OfferedDeadlineMissedStatus to_dcps(const dds_offered_deadline_missed_status_t& status);
DDS::RequestedDeadlineMissedStatus to_dcps(const dds_requested_deadline_missed_status_t& status);
DDS::OfferedIncompatibleQosStatus to_dcps(const dds_offered_incompatible_qos_status_t& status);
DDS::RequestedIncompatibleQosStatus to_dcps(const dds_requested_incompatible_qos_status_t& status);
DDS::LivelinessLostStatus to_dcps(const dds_liveliness_lost_status_t& status);
DDS::LivelinessChangedStatus to_dcps(const dds_liveliness_changed_status_t& status);
DDS::SampleLostStatus to_dcps(const dds_sample_lost_status_t& status);
DDS::SampleRejectedStatus to_dcps(const dds_sample_rejected_status_t& status);

}  // namespace dcps
