#include <poll.h>
#include <signal.h>

#include <cerrno>
#include <memory>

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/started_unit.h"

namespace tool {
namespace {

using simulator::sysroot::PrivateRoot;
using simulator::sysroot::RootOptions;
using simulator::sysroot::StateFolder;

/// Returns the command's status, or that of the signal if this command receives one first.
int wait_for_end(PrivateRoot& root, const Signals& signals) {
  for (;;) {
    if (const std::optional<int> status = root.poll()) {
      return *status;
    }
    pollfd event{signals.descriptor(), POLLIN, 0};
    if (poll(&event, 1, -1) == -1 && errno != EINTR) {
      return STATUS_FAILED;
    }
    while (const std::optional<int> number = signals.take()) {
      if (*number != SIGCHLD) {
        root.stop();
        return status_of_signal(*number);
      }
    }
  }
}

std::vector<std::pair<std::string, std::string>> environment(const std::vector<std::string>& given) {
  auto all = passed_environment();
  for (const std::string& each : given) {
    const std::size_t sign = each.find('=');
    if (sign == 0 || sign == std::string::npos) {
      throw CommandError(STATUS_BAD_USAGE, "--env: expected NAME=VALUE, got \"" + each + "\"");
    }
    all.emplace_back(each.substr(0, sign), each.substr(sign + 1));
  }
  return all;
}

}  // namespace

int exec(const ExecOptions& options) {
  const simulator::settings::UnitFile values = load_unit_file(options.unit.unit_file);
  RootOptions root_options;
  root_options.build = build_folder();
  root_options.services = options.services;
  root_options.network = options.network;
  root_options.dhcp_server = options.unit.dhcp_server;
  root_options.environment = environment(options.environment);
  root_options.command = options.command;
  root_options.command.front() = seen_inside(root_options.command.front());
  require_private_root();
  const Signals signals;
  const StateFolder state = make_state(options.unit.state);
  state.fill(values);
  PrivateRoot root(state, root_options);
  return wait_for_end(root, signals);
}

}  // namespace tool
