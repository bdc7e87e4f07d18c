#pragma once

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <thread>

#include <dcps/orb_start.h>
#include <orbsvcs/CosNamingC.h>

#include "tests/unit/simulator/temporary_folder.h"

extern char** environ;

namespace simulator_test {

/// A naming service of a test's own, on a loopback port, ended by the destructor.
class NamingService {
public:
  explicit NamingService(int port) : port_(port) {
    const std::string number = std::to_string(port);
    const std::string endpoint = "giop:tcp:127.0.0.1:" + number;
    const std::string log = folder_ / "log";
    const char* arguments[] = {"omniNames", "-start",       number.c_str(),   "-always",
                               "-datadir",  data_.c_str(),  "-nohostname",    "-errlog",
                               log.c_str(), "-ORBendPoint", endpoint.c_str(), nullptr};
    ::setenv("OMNIORB_CONFIG", "/dev/null", 1);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int error =
        ::posix_spawnp(&process_, arguments[0], &actions, nullptr, const_cast<char**>(arguments), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
      throw std::runtime_error("omniNames cannot be started");
    }
    await();
  }
  ~NamingService() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
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

  TemporaryFolder folder_;
  const std::string data_ = folder_ / "";
  int port_;
  pid_t process_ = 0;
};

}  // namespace simulator_test
