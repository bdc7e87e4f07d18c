#pragma once

#include <dds/DCPS/Service_Participant.h>

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>

namespace dcps {

/// Ends the process with what it has written, and tears nothing down. At exit OpenDDS would be destroyed under its own
/// threads and those that are calling it.
inline void leave_without_teardown(int status, void*) {
  std::cout.flush();
  std::clog.flush();
  std::fflush(nullptr);
  _exit(status);
}

/// The factory, configured by the file named by DCPSConfigFile.
inline DDS::DomainParticipantFactory_ptr configured_factory() {
  const char* file = std::getenv("DCPSConfigFile");
  if (file == nullptr) {
    return TheParticipantFactory;
  }
  std::string arguments[] = {"unit", "-DCPSConfigFile", file};
  char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
  int argc = 3;
  return TheParticipantFactoryWithArgs(argc, argv);
}

/// Starts the process's DDS unless it is started, and returns its factory; the caller owns the reference. The file
/// named by the environment variable DCPSConfigFile configures transport and discovery; without it, the engine's
/// defaults apply. Nil if start-up fails. Any thread.
///
/// From then on exit() runs the functions registered after this call and then ends the process: objects made earlier
/// are not destroyed.
inline DDS::DomainParticipantFactory_ptr start_dds() {
  const DDS::DomainParticipantFactory_ptr factory = configured_factory();
  [[maybe_unused]] static const int registered = on_exit(&leave_without_teardown, nullptr);
  return factory;
}

}  // namespace dcps
