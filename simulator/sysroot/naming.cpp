#include "simulator/sysroot/naming.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include "simulator/model/unit_model.h"
#include "simulator/process/child_process.h"

namespace simulator::sysroot {
namespace {

constexpr std::chrono::seconds PATIENCE{10};
constexpr const char* NAMING_DATA = "/run/unit/names";
constexpr const char* NAMING_LOG = "/run/unit/log/names.log";
constexpr const char* SERVICES_LOG = "/run/unit/log/services.log";

bool listens(int port) {
  const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected = connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  close(probe);
  return connected;
}

bool has_ended(pid_t process) {
  int status = 0;
  return waitpid(process, &status, WNOHANG) == process;
}

/// Waits until `ready` returns true; throws if the process exits first or is not ready in time.
template <typename Ready>
void wait_until(Ready ready, pid_t process, const std::string& what, const char* log) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (!ready()) {
    if (has_ended(process)) {
      throw std::runtime_error(what + " exited before it was ready; see " + log);
    }
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error(what + " was not ready in time; see " + log);
    }
  }
}

}  // namespace

void start_naming(int port) {
  const std::string number = std::to_string(port);
  std::filesystem::create_directories(NAMING_DATA);
  const pid_t process =
      process::start_program({"omniNames", "-start", number, "-always", "-datadir", NAMING_DATA, "-nohostname",
                              "-errlog", NAMING_LOG, "-ORBendPoint", "giop:tcp:127.0.0.1:" + number},
                             {{}, NAMING_LOG});
  const auto answers = [port] {
    if (listens(port)) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return false;
  };
  wait_until(answers, process, "the naming service", NAMING_LOG);
}

void start_services() {
  const pid_t process = process::start_program({"/opt/unit/bin/unit-services"}, {{}, SERVICES_LOG});
  const model::Services& services = model::UnitModel::of_this_unit().services();
  const auto applied = [&services] { return services.wait_applied(std::chrono::milliseconds(50)); };
  wait_until(applied, process, "unit-services", SERVICES_LOG);
}

}  // namespace simulator::sysroot
