#pragma once

#include <tao/corba.h>

#include <string>

namespace dcps {

/// Starts the process's ORB, or returns the one that is started; the caller owns the reference. The ORB listens and
/// calls on loopback only, on a port of its own choice, and resolves the initial name "NameService" to the root of the
/// naming service at 127.0.0.1:`naming_port`, which is asked at the first use of it and not before.
/// Throws CORBA::SystemException where the ORB cannot be started. Any thread.
inline CORBA::ORB_ptr start_loopback_orb(unsigned naming_port) {
  std::string arguments[] = {"unit", "-ORBInitRef",
                             "NameService=corbaloc::127.0.0.1:" + std::to_string(naming_port) + "/NameService",
                             "-ORBendPoint", "giop:tcp:127.0.0.1:"};
  char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(),
                  arguments[3].data(), arguments[4].data(), nullptr};
  int argc = 5;
  return CORBA::ORB_init(argc, argv);
}

}  // namespace dcps
