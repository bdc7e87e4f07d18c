#pragma once

#include <dds/DCPS/Service_Participant.h>

namespace dcps {

/// Starts the process's DDS unless it is started, and returns its factory; the caller owns the reference. The
/// environment variable CYCLONEDDS_URI configures the network. Any thread.
inline DDS::DomainParticipantFactory_ptr start_dds() {
  return TheParticipantFactory;
}

}  // namespace dcps
