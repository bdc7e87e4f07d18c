#include "tool/signals.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tool {

Signals::Signals(std::initializer_list<int> watched) {
  sigset_t set;
  sigemptyset(&set);
  for (const int number : watched) {
    sigaddset(&set, number);
  }
  sigprocmask(SIG_BLOCK, &set, nullptr);
  descriptor_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
  if (descriptor_ == -1) {
    throw std::system_error(errno, std::generic_category(), "signals");
  }
}

Signals::~Signals() {
  // What is still pending would end the program when unblocked.
  while (take()) {
  }
  close(descriptor_);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

std::optional<int> Signals::take() const {
  signalfd_siginfo signal{};
  if (read(descriptor_, &signal, sizeof signal) != static_cast<ssize_t>(sizeof signal)) {
    return std::nullopt;
  }
  return static_cast<int>(signal.ssi_signo);
}

}  // namespace tool
