#include "simulator/services/child.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "simulator/process/child_process.h"

namespace simulator::services {
namespace {

/// The report descriptor of a service's process.
constexpr int REPORT_DESCRIPTOR = 3;

}  // namespace

void Child::start() {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe2");
  }
  process::ChildOptions options;
  options.descriptors = {{ends[1], REPORT_DESCRIPTOR}};
  options.keeps_signal_mask = true;
  try {
    process_ = process::start_program({"/proc/self/exe", "--only", std::string(model::name_of(service_)), "--report",
                                       std::to_string(REPORT_DESCRIPTOR)},
                                      options);
  } catch (const std::system_error&) {
    ::close(ends[0]);
    ::close(ends[1]);
    throw;
  }
  ::close(ends[1]);
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
  const int status = process::reap(process_, true).value_or(0);
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
