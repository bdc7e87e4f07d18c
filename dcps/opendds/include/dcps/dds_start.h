#pragma once

#include <dds/DCPS/Service_Participant.h>

#include <cstdlib>
#include <string>

namespace dcps {

/// Starts the process's DDS unless it is started, and returns its factory; the caller owns the reference. The file
/// named by the environment variable DCPSConfigFile configures transport and discovery; without it, the engine's
/// defaults apply. Nil if start-up fails. Any thread.
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
