#include "simulator/services/child.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <system_error>

extern char** environ;

namespace simulator::services {
namespace {

/// The descriptor on which the process of a service reports.
constexpr int REPORT_DESCRIPTOR = 3;

void check(int error, const char* what) {
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), what);
  }
}

}  // namespace

void Child::start() {
  int ends[2];
  check(::pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0 ? 0 : errno, "pipe2");

  std::string name(model::name_of(service_));
  std::string program = "unit-services", only = "--only", report = "--report",
              descriptor = std::to_string(REPORT_DESCRIPTOR);
  char* arguments[] = {program.data(), only.data(), name.data(), report.data(), descriptor.data(), nullptr};

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], REPORT_DESCRIPTOR);
  const int error = ::posix_spawn(&process_, "/proc/self/exe", &actions, nullptr, arguments, environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (error != 0) {
    ::close(ends[0]);
    process_ = 0;
  }
  check(error, "/proc/self/exe");
  report_ = ends[0];
  applied_.reset();
  started_ = true;
}

std::optional<int> Child::take_reports() {
  std::uint32_t count = 0;
  for (;;) {
    const ssize_t got = ::read(report_, &count, sizeof count);
    if (got == sizeof count) {
      applied_ = count;
    } else if (got == 0) {
      return reap();
    } else {
      return std::nullopt;
    }
  }
}

bool Child::was_killed(int status) {
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

int Child::reap() {
  int status = 0;
  while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  ::close(report_);
  report_ = -1;
  process_ = 0;
  return status;
}

void Child::ask_to_end() const {
  if (alive()) {
    ::kill(process_, SIGTERM);
  }
}

bool Child::await_end(std::chrono::steady_clock::time_point deadline) {
  std::optional<int> status;
  while (alive()) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
    pollfd reports{report_, POLLIN, 0};
    if (left <= 0 || ::poll(&reports, 1, static_cast<int>(left)) == 0) {
      ::kill(process_, SIGKILL);
      reap();
      return false;
    }
    status = take_reports();
  }
  return !status || *status == 0 || was_killed(*status);
}

}  // namespace simulator::services
