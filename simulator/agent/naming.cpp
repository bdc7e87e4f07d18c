#include "simulator/agent/naming.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "simulator/model/unit_model.h"
#include "simulator/process/child_process.h"

namespace simulator::agent {
namespace {

constexpr std::chrono::seconds PATIENCE{10};
constexpr const char* NAMING_DATA = "/run/unit/names";

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
void wait_until(Ready ready, pid_t process, const std::string& what, const std::string& log) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (!ready()) {
    if (has_ended(process)) {
      throw std::runtime_error(std::string(what).append(" exited before it was ready; see ").append(log));
    }
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error(std::string(what).append(" was not ready in time; see ").append(log));
    }
  }
}

/// Starts a program without input whose output goes to the log.
pid_t start_into(int log, const std::vector<std::string>& line) {
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  process::ChildOptions options;
  options.descriptors = {{nothing, STDIN_FILENO}, {log, STDOUT_FILENO}, {log, STDERR_FILENO}};
  const pid_t process = process::start_program(line, options);
  close(nothing);
  return process;
}

}  // namespace

void start_naming(int port, int log) {
  const std::string number = std::to_string(port);
  std::filesystem::create_directories(NAMING_DATA);
  const pid_t process =
      start_into(log, {"omniNames", "-start", number, "-always", "-datadir", NAMING_DATA, "-nohostname", "-errlog",
                       "/dev/stderr", "-ORBendPoint", "giop:tcp:127.0.0.1:" + number});
  const auto answers = [port] {
    if (listens(port)) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    return false;
  };
  wait_until(answers, process, "the naming service", "names.log");
}

void start_services(int log) {
  const pid_t process = start_into(log, {"/opt/unit/bin/unit-services"});
  const model::Services& services = model::UnitModel::of_this_unit().services();
  const auto applied = [&services] { return services.wait_applied(std::chrono::milliseconds(50)); };
  wait_until(applied, process, "unit-services", "services.log");
}

}  // namespace simulator::agent
