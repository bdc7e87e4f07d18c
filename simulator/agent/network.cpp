#include "simulator/agent/network.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "simulator/process/child_process.h"

namespace simulator::agent {
namespace {

constexpr std::chrono::seconds PATIENCE{5};

/// Lets two processes wait for each other: one byte each way.
class Handshake {
public:
  Handshake() {
    if (pipe2(there_, O_CLOEXEC) != 0 || pipe2(back_, O_CLOEXEC) != 0) {
      throw std::runtime_error("cannot create a pipe");
    }
  }
  ~Handshake() {
    for (const int descriptor : {there_[0], there_[1], back_[0], back_[1]}) {
      close(descriptor);
    }
  }
  Handshake(const Handshake&) = delete;
  Handshake& operator=(const Handshake&) = delete;

  bool child_says_ready() const { return pass(there_[1]); }
  bool child_waits() const { return take(back_[0]); }
  bool parent_waits() const { return take(there_[0]); }
  bool parent_says_go() const { return pass(back_[1]); }
  /// Each side closes the other's ends, so that the death of one ends the other's wait.
  void in_parent() { give_up(there_[1], back_[0]); }
  void in_child() { give_up(there_[0], back_[1]); }

private:
  static bool pass(int descriptor) { return write(descriptor, "x", 1) == 1; }
  static bool take(int descriptor) {
    char byte = 0;
    return read(descriptor, &byte, 1) == 1;
  }
  static void give_up(int& one, int& other) {
    close(one);
    close(other);
    one = other = -1;
  }

  int there_[2];
  int back_[2];
};

/// Runs the child that keeps the far end's namespace alive.
[[noreturn]] void keep_far_end(Handshake& handshake, bool dhcp_server, int log) {
  handshake.in_child();
  if (unshare(CLONE_NEWNET) != 0 || !handshake.child_says_ready() || !handshake.child_waits() ||
      process::run_program({"ip", "-batch", "-"},
                           "link set lo up\naddress add 10.77.0.1/24 dev srv0\nlink set srv0 up\n") != 0) {
    _exit(1);
  }
  if (!dhcp_server) {
    for (;;) {
      pause();
    }
  }
  process::ChildOptions options;
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  options.descriptors = {{nothing, STDIN_FILENO}, {log, STDOUT_FILENO}, {log, STDERR_FILENO}};
  process::become_program(
      {"dnsmasq", "--keep-in-foreground", "--conf-file=/dev/null", "--user=", "--group=", "--pid-file=", "--port=0",
       "--interface=srv0", "--bind-interfaces", "--dhcp-authoritative", "--no-ping",
       "--dhcp-range=10.77.0.10,10.77.0.50,255.255.255.0,1h", "--dhcp-option=option:dns-server,10.77.0.1",
       "--dhcp-leasefile=/run/unit/leases", "--log-facility=-"},
      options);
}

/// Whether a socket in that process's network namespace is bound to the DHCP server's port.
bool serves_dhcp(pid_t process) {
  std::ifstream sockets("/proc/" + std::to_string(process) + "/net/udp");
  for (std::string line; std::getline(sockets, line);) {
    if (line.find(":0043 ") != std::string::npos) {
      return true;
    }
  }
  return false;
}

void wait_for_server(pid_t process) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (!serves_dhcp(process)) {
    if (std::chrono::steady_clock::now() > deadline || !std::filesystem::exists("/proc/" + std::to_string(process))) {
      throw std::runtime_error("the DHCP server did not start; see network.log");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

}  // namespace

void prepare_loopback() {
  process::run_program({"ip", "-batch", "-"}, "link set lo multicast on\nroute add 224.0.0.0/4 dev lo\n");
}

void make_eth0(bool dhcp_server, int log) {
  Handshake handshake;
  const pid_t keeper = fork();
  if (keeper == 0) {
    keep_far_end(handshake, dhcp_server, log);
  }
  handshake.in_parent();
  if (keeper == -1 || !handshake.parent_waits()) {
    throw std::runtime_error("cannot create a network namespace for the far end of eth0");
  }
  const std::string commands =
      "link add eth0 type veth peer name srv0\nlink set srv0 netns " + std::to_string(keeper) + "\nlink set eth0 up\n";
  if (process::run_program({"ip", "-batch", "-"}, commands) != 0) {
    throw std::runtime_error("cannot create eth0: this machine's kernel provides no virtual interface pair (veth)");
  }
  handshake.parent_says_go();
  if (dhcp_server) {
    wait_for_server(keeper);
  }
}

}  // namespace simulator::agent
