#pragma once

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

/// Conversion of Cyclone's results, times and statuses to those of DCPS.
namespace dcps {

/// Results that only Cyclone has become RETCODE_ERROR.
DDS::ReturnCode_t to_return_code(dds_return_t result);

DDS::Time_t to_dcps(dds_time_t time);
DDS::PublicationMatchedStatus to_dcps(const dds_publication_matched_status_t& status);
DDS::SubscriptionMatchedStatus to_dcps(const dds_subscription_matched_status_t& status);
DDS::RequestedDeadlineMissedStatus to_dcps(const dds_requested_deadline_missed_status_t& status);
DDS::RequestedIncompatibleQosStatus to_dcps(const dds_requested_incompatible_qos_status_t& status);
DDS::LivelinessChangedStatus to_dcps(const dds_liveliness_changed_status_t& status);
DDS::SampleLostStatus to_dcps(const dds_sample_lost_status_t& status);
DDS::SampleRejectedStatus to_dcps(const dds_sample_rejected_status_t& status);

}  // namespace dcps
