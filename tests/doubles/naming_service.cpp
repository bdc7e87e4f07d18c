#include "tests/doubles/naming_service.h"

#include <arpa/inet.h>
#include <dcps/orb_start.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

namespace doubles {

unsigned free_port() {
  const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  const bool bound = ::bind(probe, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                     ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size) == 0;
  ::close(probe);
  if (!bound) {
    throw std::runtime_error("no loopback port is free");
  }
  return ntohs(address.sin_port);
}

NamingService::NamingService() {
  // Between the choice of a port and its use, another process may take it.
  for (int tries = 0; tries < 10; ++tries) {
    start();
    if (comes_to_answer()) {
      return;
    }
  }
  throw std::runtime_error("omniNames does not start: " + text_of(folder_ / "output"));
}

void NamingService::start() {
  port_ = free_port();
  const std::string port = std::to_string(port_);
  process_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"omniNames", "-start", port, "-always", "-datadir", folder_ / "", "-nohostname",
                               "-errlog", folder_ / "log", "-ORBendPoint", "giop:tcp:127.0.0.1:" + port},
      std::vector<std::string>{}, folder_ / "output");
}

CosNaming::NamingContext_var NamingService::root() const {
  const CORBA::ORB_var orb = dcps::start_loopback_orb(port_);
  const std::string address = "corbaloc:iiop:127.0.0.1:" + std::to_string(port_) + "/NameService";
  const CORBA::Object_var object = orb->string_to_object(address.c_str());
  return CosNaming::NamingContext::_narrow(object.in());
}

bool NamingService::comes_to_answer() const {
  for (int tries = 0; tries < 5000 && process_->running(); ++tries) {
    try {
      if (!CORBA::is_nil(root().in())) {
        return true;
      }
    } catch (const CORBA::SystemException&) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  return false;
}

}  // namespace doubles
