#pragma once

#include <tao/corba.h>

#include <string>

namespace dcps {

/// Starts the process's ORB unless it is started, and returns it; the caller owns the reference. The ORB uses loopback
/// only, with a port of its own choice, and resolves the initial name "NameService" to the root of the naming service
/// at 127.0.0.1:`naming_port`, which it contacts on first use. Throws CORBA::SystemException if start-up fails. Any
/// thread.
inline CORBA::ORB_ptr start_loopback_orb(unsigned naming_port) {
  std::string arguments[] = {"unit", "-ORBInitRef",
                             "NameService=corbaloc:iiop:127.0.0.1:" + std::to_string(naming_port) + "/NameService",
                             "-ORBListenEndpoints", "iiop://127.0.0.1:0"};
  char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(),
                  arguments[3].data(), arguments[4].data(), nullptr};
  int argc = 5;
  return CORBA::ORB_init(argc, argv);
}

}  // namespace dcps
