#include "control/supervisor/supervisor.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <fstream>
#include <thread>

#include "control/service/service.h"
#include "simulator/channel/frames.h"
#include "simulator/process/child_process.h"
#include "simulator/sysroot/bwrap_command.h"
#include "simulator/sysroot/unit_environment.h"
#include "simulator/sysroot/user_namespaces.h"

namespace control::supervisor {
namespace {

using Clock = std::chrono::steady_clock;
using nlohmann::ordered_json;

constexpr int CHANNEL_INSIDE = 3;
constexpr std::chrono::milliseconds PATIENCE_WITH_ROOT{1000};
constexpr std::chrono::milliseconds PATIENCE_WITH_SERVICE{2000};
constexpr std::size_t MOST_OUTPUT = 4096;
constexpr int FORMAT = 1;

std::string now_as_text() {
  const std::time_t now = std::time(nullptr);
  std::tm broken_down{};
  gmtime_r(&now, &broken_down);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &broken_down);
  return text;
}

int watched_signals() {
  sigset_t watched;
  sigemptyset(&watched);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGCHLD}) {
    sigaddset(&watched, number);
  }
  sigprocmask(SIG_BLOCK, &watched, nullptr);
  signal(SIGPIPE, SIG_IGN);
  return signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
}

int require(int result, const char* what) {
  if (result == -1) {
    throw LaunchError(STATUS_FAILED, std::string(what) + ": " + std::strerror(errno));
  }
  return result;
}

/// Gives up root's rights for good.
void become_service_user() {
  constexpr unsigned USER = SERVICE_USER_OF_ROOT;
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setresgid(USER, USER, USER) != 0 || setresuid(USER, USER, USER) != 0)) {
    _exit(STATUS_FAILED);
  }
  prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

std::string library_inside(const std::string& library) {
  const std::string inside = seen_inside(library);
  const bool elsewhere = inside == library && std::filesystem::is_regular_file(library);
  return elsewhere ? "/run/unit/library/" + std::filesystem::path(library).filename().string() : inside;
}

}  // namespace

void Report::send(const ordered_json& document) {
  if (descriptor_ != -1) {
    const std::string line = document.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
    [[maybe_unused]] const ssize_t written = write(descriptor_, line.data(), line.size());
    close(descriptor_);
    descriptor_ = -1;
  }
}

void Report::ready(const UnitFolder& folder, pid_t supervisor) {
  send({{"ready", {{"name", folder.name()}, {"folder", folder.path().string()}, {"supervisor", supervisor}}}});
}

void Report::error(const std::string& what, int status) {
  send({{"error", {{"what", what}, {"status", status}}}});
}

Supervisor::Supervisor(const Launch& launch, Report report, int lifeline)
    : launch_(launch),
      report_(report),
      lifeline_(lifeline),
      folder_(launch.name, launch.state),
      memory_(folder_.name(), launch.limits.memory_mib),
      started_at_(now_as_text()),
      signals_(watched_signals()) {
  // Everything that the unit leaves behind becomes a child of this process, which waits for it.
  prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
  require(pipe2(failure_, O_CLOEXEC | O_NONBLOCK), "pipe");
  memory_.enter();
  start_root();
  memory_.leave();
  start_service();
  folder_.describe(
      {{"format", FORMAT}, {"name", folder_.name()}, {"supervisor", getpid()}, {"started_at", started_at_}});
}

Supervisor::~Supervisor() {
  stop();
}

void Supervisor::start_root() {
  int channel[2];
  int output[2];
  require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, channel), "socket pair");
  require(pipe2(output, O_CLOEXEC), "pipe");
  const int nothing = require(open("/dev/null", O_RDWR | O_CLOEXEC), "/dev/null");
  simulator::sysroot::RootOptions options;
  options.build = build_folder();
  options.binds = launch_.binds;
  options.disk_mib = launch_.limits.disk_mib;
  if (!launch_.library.empty() && library_inside(launch_.library) != seen_inside(launch_.library)) {
    options.files.emplace_back(std::filesystem::absolute(launch_.library), library_inside(launch_.library));
  }
  const simulator::sysroot::BwrapCommand bwrap(options);
  auto environment = simulator::sysroot::unit_environment();
  environment.insert(environment.end(), launch_.environment.begin(), launch_.environment.end());
  simulator::process::ChildOptions child;
  child.descriptors = {
      {nothing, STDIN_FILENO}, {output[1], STDOUT_FILENO}, {output[1], STDERR_FILENO}, {channel[1], CHANNEL_INSIDE}};
  child.dies_with_starter = true;
  child.own_session = true;
  root_ = simulator::process::start_program(
      bwrap.line(environment, {"/opt/unit/bin/unit-agent", std::to_string(CHANNEL_INSIDE)}), child);
  close(nothing);
  close(output[1]);
  close(channel[1]);
  root_output_ = output[0];
  fcntl(root_output_, F_SETFL, O_NONBLOCK);
  agent_ = channel[0];
  order_set_up();
}

void Supervisor::order_set_up() const {
  std::vector<std::string> host;
  if (!launch_.host.empty()) {
    host = launch_.host_wrap;
    host.push_back(launch_.host == "unit-host" ? "/opt/unit/bin/unit-host" : seen_inside(launch_.host));
    if (!launch_.library.empty()) {
      host.insert(host.end(), {"--library", library_inside(launch_.library)});
    }
    host.insert(host.end(), launch_.host_arguments.begin(), launch_.host_arguments.end());
  }
  const ordered_json order = {{"do", "set_up"},
                              {"with",
                               {{"unit_file_name", launch_.unit_file_name},
                                {"unit_file", launch_.unit_file},
                                {"services", launch_.services},
                                {"without", launch_.without},
                                {"network", launch_.network},
                                {"dhcp_server", launch_.dhcp_server},
                                {"record", launch_.record},
                                {"host", host},
                                {"host_serves", launch_.host_serves},
                                {"processes", launch_.limits.processes},
                                {"open_files", launch_.limits.open_files},
                                {"root_mib", launch_.limits.disk_mib}}}};
  const std::string frame = simulator::channel::frame_of(simulator::channel::DOCUMENTS, order.dump());
  // Nothing of the unit's own runs yet: the agent reads the order as soon as it starts.
  for (std::size_t sent = 0; sent < frame.size();) {
    const ssize_t part = send(agent_, frame.data() + sent, frame.size() - sent, MSG_NOSIGNAL);
    if (part <= 0) {
      return;
    }
    sent += static_cast<std::size_t>(part);
  }
}

void Supervisor::start_service() {
  const int listening = folder_.listen();
  const pid_t supervisor = getpid();
  service_ = require(fork(), "fork");
  if (service_ == 0) {
    serve(listening, supervisor);
  }
  close(listening);
  close(agent_);
  agent_ = -1;
}

ordered_json Supervisor::facts(pid_t supervisor) const {
  ordered_json limits = as_json(launch_.limits);
  if (!memory_.exists()) {
    limits["memory_mib"] = nullptr;
  }
  return {
      {"name", folder_.name()},
      {"version", PROJECT_VERSION},
      {"started_at", started_at_},
      {"process", {{"supervisor", supervisor}, {"service", getpid()}, {"root", root_}}},
      {"host", {{"program", launch_.host.empty() ? ordered_json() : ordered_json(launch_.host)}}},
      {"library", launch_.library.empty() ? "/opt/unit/lib/libradalt_hardware.so" : library_inside(launch_.library)},
      {"services", launch_.services},
      {"network", launch_.network || launch_.dhcp_server},
      {"limits", limits}};
}

void Supervisor::take_signals() {
  signalfd_siginfo signal{};
  while (read(signals_, &signal, sizeof signal) == static_cast<ssize_t>(sizeof signal)) {
    if (signal.ssi_signo == SIGCHLD) {
      reap();
    } else if (service_ != -1) {
      kill(service_, SIGTERM);
    }
  }
}

void Supervisor::take_root_output() {
  char block[4096];
  const ssize_t size = read(root_output_, block, sizeof block);
  if (size > 0) {
    last_output_.append(block, static_cast<std::size_t>(size));
    last_output_.erase(0, last_output_.size() > MOST_OUTPUT ? last_output_.size() - MOST_OUTPUT : 0);
  } else if (size == 0 || errno != EAGAIN) {
    close(root_output_);
    root_output_ = -1;
  }
}

void Supervisor::reap() {
  int status = 0;
  for (pid_t ended = waitpid(-1, &status, WNOHANG); ended > 0; ended = waitpid(-1, &status, WNOHANG)) {
    if (ended == root_) {
      root_ = -1;
    } else if (ended == service_) {
      service_ = -1;
    }
  }
}

void Supervisor::run() {
  bool alive = true;
  while (alive) {
    pollfd events[] = {{signals_, POLLIN, 0}, {lifeline_, POLLIN, 0}, {root_output_, POLLIN, 0}};
    if (poll(events, 3, -1) == -1 && errno != EINTR) {
      break;
    }
    if (events[2].revents != 0) {
      take_root_output();
    }
    if (events[0].revents != 0) {
      take_signals();
    }
    alive = root_ != -1 && service_ != -1 && events[1].revents == 0;
  }
  stop();
  // Ignored if the unit was reported as ready.
  report_.error(failure(), STATUS_FAILED);
}

void Supervisor::wait_for_root() {
  const auto deadline = Clock::now() + PATIENCE_WITH_ROOT;
  while (root_ != -1) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      kill(root_, SIGKILL);
    }
    pollfd event{signals_, POLLIN, 0};
    poll(&event, 1, left <= 0 ? 100 : static_cast<int>(left));
    take_signals();
  }
}

/// The service gets the chance to say good-bye; then nothing of the unit survives.
void Supervisor::stop() {
  const auto deadline = Clock::now() + PATIENCE_WITH_SERVICE;
  if (root_ == -1) {
    kill_orphans();
  } else if (service_ != -1) {
    kill(service_, SIGTERM);
  }
  while (service_ != -1) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      kill(service_, SIGKILL);
    }
    pollfd event{signals_, POLLIN, 0};
    poll(&event, 1, left <= 0 ? 100 : static_cast<int>(left));
    take_signals();
  }
  wait_for_root();
  kill_orphans();
}

/// Ends the processes that a killed root has left to this one.
void Supervisor::kill_orphans() {
  for (bool found = true; found;) {
    found = false;
    std::ifstream children("/proc/self/task/" + std::to_string(getpid()) + "/children");
    for (pid_t child = 0; children >> child;) {
      if (child != service_ && child != root_) {
        found = true;
        kill(child, SIGKILL);
      }
    }
    reap();
    if (found) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

/// Stops the service at SIGTERM, which is blocked in all its threads.
void stop_at_signal(service::Service& service) {
  std::thread([&service] {
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    int number = 0;
    sigwait(&ending, &number);
    service.stop();
  }).detach();
}

void Supervisor::serve(int listening, pid_t supervisor) {
  for (const int descriptor : {signals_, root_output_, lifeline_, failure_[0]}) {
    close(descriptor);
  }
  service::ServiceOptions options;
  options.agent = agent_;
  options.listener = listening;
  options.logs = folder_.logs();
  options.unit = facts(supervisor);
  options.on_ready = [this, supervisor] { report_.ready(folder_, supervisor); };
  become_service_user();
  // A change of the user would cancel this.
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != supervisor) {
    _exit(STATUS_FAILED);
  }
  int status = STATUS_FAILED;
  try {
    // Not destroyed: the waiting thread uses it until the process ends.
    auto& service = *new service::Service(std::move(options));
    stop_at_signal(service);
    const service::Ended ended = service.run();
    if (ended.why == service::Ended::STOPPED) {
      status = 0;
    } else {
      tell_failure(ended.what);
    }
  } catch (const std::exception& error) {
    tell_failure(error.what());
  }
  _exit(status);
}

void Supervisor::tell_failure(const std::string& what) const {
  [[maybe_unused]] const ssize_t written = write(failure_[1], what.data(), what.size());
}

/// Why the unit ended before it was ready.
std::string Supervisor::failure() {
  char block[4096];
  const ssize_t size = read(failure_[0], block, sizeof block);
  while (root_output_ != -1) {
    take_root_output();
  }
  std::string text = size > 0 ? std::string(block, static_cast<std::size_t>(size)) : "the unit exited";
  while (!last_output_.empty() && last_output_.back() == '\n') {
    last_output_.pop_back();
  }
  if (!last_output_.empty() && text.find(last_output_) == std::string::npos) {
    text.append(": ").append(last_output_);
  }
  return text;
}

}  // namespace control::supervisor
