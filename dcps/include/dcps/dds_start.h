#pragma once

#include <dds/DCPS/Service_Participant.h>

namespace dcps {

/// Starts the process's DDS, or returns the factory of the one that is started; the caller owns the reference. The
/// network that it keeps to is what CYCLONEDDS_URI says. Nil where it cannot be started. Any thread.
inline DDS::DomainParticipantFactory_ptr start_dds() {
  return TheParticipantFactory;
}

}  // namespace dcps
