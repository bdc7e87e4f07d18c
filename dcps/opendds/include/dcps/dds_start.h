#pragma once

#include <dds/DCPS/Service_Participant.h>

#include <cstdlib>
#include <string>

namespace dcps {

/// Starts the process's DDS, or returns the factory of the one that is started; the caller owns the reference.
/// Transport and discovery are what the configuration file named by the environment variable DCPSConfigFile says, the
/// engine's own defaults without it. Nil where it cannot be started. Any thread.
inline DDS::DomainParticipantFactory_ptr start_dds() {
  const char* file = std::getenv("DCPSConfigFile");
  if (file == nullptr) {
    return TheParticipantFactory;
  }
  std::string arguments[] = {"unit", "-DCPSConfigFile", file};
  char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
  int argc = 3;
  return TheParticipantFactoryWithArgs(argc, argv);
}

}  // namespace dcps
