#include "tool/signals.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tool {

Signals::Signals() {
  sigset_t watched;
  sigemptyset(&watched);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
    sigaddset(&watched, number);
  }
  sigprocmask(SIG_BLOCK, &watched, nullptr);
  signal(SIGPIPE, SIG_IGN);
  descriptor_ = signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
  if (descriptor_ == -1) {
    throw std::system_error(errno, std::generic_category(), "signals");
  }
}

Signals::~Signals() {
  close(descriptor_);
}

std::optional<int> Signals::take() const {
  signalfd_siginfo signal{};
  if (read(descriptor_, &signal, sizeof signal) != static_cast<ssize_t>(sizeof signal)) {
    return std::nullopt;
  }
  return static_cast<int>(signal.ssi_signo);
}

}  // namespace tool
