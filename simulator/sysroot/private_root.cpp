#include "simulator/sysroot/private_root.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include "simulator/sysroot/bwrap_command.h"
#include "simulator/sysroot/unit_environment.h"

namespace simulator::sysroot {
namespace {

constexpr std::chrono::seconds patience_at_end{5};

using Words = std::vector<std::string>;

Words init_line(const RootOptions& options, int lifeline) {
  Words words{"/opt/unit/bin/unit-init", "--lifeline", std::to_string(lifeline)};
  if (options.services) {
    words.insert(words.end(), {"--services", std::to_string(naming_port)});
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

/// The child's part between fork and exec; no memory is taken here.
[[noreturn]] void become(char* const* line, const RootOptions& options, pid_t parent) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) {
    _exit(127);
  }
  // A session of its own: the terminal's signals reach only the starter, which then ends the unit in good order.
  setsid();
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  signal(SIGPIPE, SIG_DFL);
  if (dup2(options.input, 0) == -1 || dup2(options.output, 1) == -1 || dup2(options.error, 2) == -1) {
    _exit(127);
  }
  execv(line[0], line);
  _exit(127);
}

}  // namespace

PrivateRoot::PrivateRoot(const StateFolder& state, const RootOptions& options) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  lifeline_ = ends[1];
  fcntl(ends[0], F_SETFD, 0);

  std::vector<std::pair<std::string, std::string>> environment = unit_environment(state, naming_port);
  environment.insert(environment.end(), options.environment.begin(), options.environment.end());
  const BwrapCommand bwrap(options.build, state.path());
  const Words words = bwrap.line(environment, init_line(options, ends[0]));
  std::vector<char*> line;
  for (const std::string& word : words) {
    line.push_back(const_cast<char*>(word.c_str()));
  }
  line.push_back(nullptr);

  const pid_t parent = getpid();
  process_ = fork();
  if (process_ == 0) {
    become(line.data(), options, parent);
  }
  const int failure = errno;
  close(ends[0]);
  if (process_ == -1) {
    close(lifeline_);
    throw std::system_error(failure, std::generic_category(), "fork");
  }
}

PrivateRoot::~PrivateRoot() {
  stop();
}

std::optional<int> PrivateRoot::reap(int options) {
  if (status_) {
    return status_;
  }
  int status = 0;
  pid_t reaped = -1;
  do {
    reaped = waitpid(process_, &status, options);
  } while (reaped == -1 && errno == EINTR);
  if (reaped == process_) {
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  return status_;
}

std::optional<int> PrivateRoot::poll() {
  return reap(WNOHANG);
}

int PrivateRoot::wait() {
  return reap(0).value_or(1);
}

void PrivateRoot::stop() {
  if (lifeline_ != -1) {
    close(lifeline_);
    lifeline_ = -1;
  }
  const auto deadline = std::chrono::steady_clock::now() + patience_at_end;
  while (!poll() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  if (!status_) {
    kill(process_, SIGKILL);
    wait();
  }
}

}  // namespace simulator::sysroot
