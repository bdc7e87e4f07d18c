#include "dcps/src/engine.h"

#include <atomic>

namespace dcps {

static_assert(-DDS_RETCODE_NO_DATA == DDS::RETCODE_NO_DATA);
static_assert(-DDS_RETCODE_TIMEOUT == DDS::RETCODE_TIMEOUT);
static_assert(-DDS_RETCODE_ILLEGAL_OPERATION == DDS::RETCODE_ILLEGAL_OPERATION);

DDS::ReturnCode_t to_return_code(dds_return_t result) {
  if (result >= 0) {
    return DDS::RETCODE_OK;
  }
  if (result < DDS_RETCODE_ILLEGAL_OPERATION) {
    return DDS::RETCODE_ERROR;
  }
  return -result;
}

dds_duration_t to_cyclone(const DDS::Duration_t& duration) {
  if (duration.sec == DDS::DURATION_INFINITE_SEC && duration.nanosec == DDS::DURATION_INFINITE_NSEC) {
    return DDS_INFINITY;
  }
  return DDS_SECS(duration.sec) + duration.nanosec;
}

DDS::Time_t to_dcps(dds_time_t time) {
  return {static_cast<CORBA::Long>(time / DDS_NSECS_IN_SEC), static_cast<CORBA::ULong>(time % DDS_NSECS_IN_SEC)};
}

DDS::InstanceHandle_t next_instance_handle() {
  static std::atomic<DDS::InstanceHandle_t> last{DDS::HANDLE_NIL};
  return ++last;
}

}  // namespace dcps
