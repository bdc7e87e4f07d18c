#pragma once

#include <stdlib.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <dcps/orb_start.h>
#include <orbsvcs/CosNamingC.h>

#include "tests/doubles/child_process.h"
#include "tests/doubles/temporary_folder.h"

namespace simulator_test {

/// A naming service for one test, on a loopback port, ended by the destructor.
class NamingService {
public:
  explicit NamingService(int port) : port_(port) {
    const std::string number = std::to_string(port);
    const std::string endpoint = "giop:tcp:127.0.0.1:" + number;
    ::setenv("OMNIORB_CONFIG", "/dev/null", 1);
    process_ = std::make_unique<doubles::ChildProcess>(
        std::vector<std::string>{"omniNames", "-start", number, "-always", "-datadir", folder_ / "", "-nohostname",
                                 "-errlog", folder_ / "log", "-ORBendPoint", "giop:tcp:127.0.0.1:" + number},
        std::vector<std::string>{}, folder_ / "output");
    await();
  }
  NamingService(const NamingService&) = delete;
  NamingService& operator=(const NamingService&) = delete;

  CosNaming::NamingContext_ptr root() const {
    const CORBA::ORB_var orb = dcps::start_loopback_orb(static_cast<unsigned>(port_));
    const CORBA::Object_var object = orb->resolve_initial_references("NameService");
    return CosNaming::NamingContext::_narrow(object.in());
  }

private:
  void await() const {
    for (int attempt = 0; attempt < 500; ++attempt) {
      try {
        const CosNaming::NamingContext_var answered = root();
        return;
      } catch (const CORBA::SystemException&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
      }
    }
    throw std::runtime_error("omniNames does not answer");
  }

  doubles::TemporaryFolder folder_;
  int port_;
  std::unique_ptr<doubles::ChildProcess> process_;
};

}  // namespace simulator_test
