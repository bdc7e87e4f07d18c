#pragma once

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

/// Conversions between Cyclone's values and those of DCPS.
namespace dcps {

/// Cyclone's results are the DCPS return codes, negative; those that only Cyclone has become RETCODE_ERROR.
DDS::ReturnCode_t to_return_code(dds_return_t result);

dds_duration_t to_cyclone(const DDS::Duration_t& duration);
DDS::Time_t to_dcps(dds_time_t time);

/// A number that nothing in this process has had yet; never HANDLE_NIL.
DDS::InstanceHandle_t next_instance_handle();

}  // namespace dcps
