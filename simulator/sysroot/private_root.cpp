#include "simulator/sysroot/private_root.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "simulator/process/child_process.h"
#include "simulator/sysroot/bwrap_command.h"
#include "simulator/sysroot/unit_environment.h"

namespace simulator::sysroot {
namespace {

constexpr std::chrono::seconds PATIENCE_AT_END{5};

using Words = std::vector<std::string>;

Words init_line(const RootOptions& options, int lifeline) {
  Words words{"/opt/unit/bin/unit-init", "--lifeline", std::to_string(lifeline)};
  if (options.services) {
    words.insert(words.end(), {"--services", std::to_string(NAMING_PORT)});
  }
  if (options.network || options.dhcp_server) {
    words.push_back("--network");
  }
  if (options.dhcp_server) {
    words.push_back("--dhcp-server");
  }
  words.push_back("--");
  words.insert(words.end(), options.command.begin(), options.command.end());
  return words;
}

}  // namespace

PrivateRoot::PrivateRoot(const StateFolder& state, const RootOptions& options) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  lifeline_ = ends[1];
  fcntl(ends[0], F_SETFD, 0);

  std::vector<std::pair<std::string, std::string>> environment = unit_environment(state, NAMING_PORT);
  environment.insert(environment.end(), options.environment.begin(), options.environment.end());
  const BwrapCommand bwrap(options.build, state.path());
  process::ChildOptions child;
  child.descriptors = {{options.input, 0}, {options.output, 1}, {options.error, 2}};
  child.dies_with_starter = true;
  // The terminal's signals reach only the starter, which then stops the unit cleanly.
  child.own_session = true;
  try {
    process_ = process::start_program(bwrap.line(environment, init_line(options, ends[0])), child);
  } catch (const std::system_error&) {
    close(ends[0]);
    close(lifeline_);
    throw;
  }
  close(ends[0]);
}

PrivateRoot::~PrivateRoot() {
  stop();
}

std::optional<int> PrivateRoot::reap(bool wait) {
  if (!status_) {
    if (const std::optional<int> status = process::reap(process_, wait)) {
      status_ = process::shell_status(*status);
    }
  }
  return status_;
}

std::optional<int> PrivateRoot::poll() {
  return reap(false);
}

int PrivateRoot::wait() {
  return reap(true).value_or(1);
}

void PrivateRoot::stop() {
  if (lifeline_ != -1) {
    close(lifeline_);
    lifeline_ = -1;
  }
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE_AT_END;
  while (!poll() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  if (!status_) {
    kill(process_, SIGKILL);
    wait();
  }
}

}  // namespace simulator::sysroot
