// First process of a unit's private root: sets up the unit and runs the command. Its exit ends every other process
// inside.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>

#include "simulator/process/child_process.h"
#include "simulator/sysroot/init_orders.h"
#include "simulator/sysroot/naming.h"
#include "simulator/sysroot/network.h"

namespace {

using simulator::process::shell_status;
using simulator::process::start_program;
using simulator::sysroot::Orders;
using simulator::sysroot::read_orders;

constexpr int STATUS_OF_ENDED_UNIT = 1;
constexpr int STATUS_OF_BAD_USAGE = 2;
constexpr const char* USAGE =
    "usage: unit-init --lifeline DESCRIPTOR [--services PORT] [--network] [--dhcp-server] -- COMMAND…\n"
    "First process of a unit's private root; started by \"unit\".\n";

/// Sets up the unit around this process. Throws std::runtime_error.
void prepare(const Orders& orders) {
  std::filesystem::create_directories("/run/unit/log");
  simulator::sysroot::prepare_loopback();
  if (orders.network) {
    simulator::sysroot::make_eth0(orders.dhcp_server);
  }
  if (mount(nullptr, "/", nullptr, MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV, nullptr) != 0) {
    throw std::runtime_error(std::string("/ cannot be made read-only: ") + std::strerror(errno));
  }
  if (orders.naming_port != 0) {
    simulator::sysroot::start_naming(orders.naming_port);
    simulator::sysroot::start_services();
  }
}

/// Reaps all exited children; returns the command's status if it is one of them.
std::optional<int> reap(pid_t command) {
  std::optional<int> result;
  int status = 0;
  for (pid_t ended = waitpid(-1, &status, WNOHANG); ended > 0; ended = waitpid(-1, &status, WNOHANG)) {
    if (ended == command) {
      result = shell_status(status);
    }
  }
  return result;
}

/// Waits until the command exits or the unit must end; returns the exit status.
int look_after(pid_t command, int lifeline, int children) {
  pollfd events[] = {{children, POLLIN, 0}, {lifeline, POLLIN, 0}};
  for (;;) {
    if (poll(events, 2, -1) == -1 && errno != EINTR) {
      return STATUS_OF_ENDED_UNIT;
    }
    if ((events[0].revents & POLLIN) != 0) {
      signalfd_siginfo signal{};
      [[maybe_unused]] const ssize_t taken = read(children, &signal, sizeof signal);
      if (const std::optional<int> status = reap(command)) {
        return *status;
      }
    }
    if (events[1].revents != 0) {
      return STATUS_OF_ENDED_UNIT;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::optional<Orders> read = read_orders({argv + 1, argv + argc});
  if (!read) {
    std::fputs(USAGE, stderr);
    return STATUS_OF_BAD_USAGE;
  }
  const Orders& orders = *read;
  fcntl(orders.lifeline, F_SETFD, FD_CLOEXEC);

  sigset_t watched;
  sigemptyset(&watched);
  sigaddset(&watched, SIGCHLD);
  sigprocmask(SIG_BLOCK, &watched, nullptr);
  const int children = signalfd(-1, &watched, SFD_CLOEXEC);

  int status = STATUS_OF_ENDED_UNIT;
  try {
    prepare(orders);
    status = look_after(start_program(orders.command), orders.lifeline, children);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "unit: %s\n", error.what());
  }
  // When the first process of a root exits, all others in it are killed.
  _exit(status);
}
