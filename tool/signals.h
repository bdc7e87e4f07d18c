#pragma once

#include <optional>

namespace tool {

/// The signals handled while a unit runs: termination signals and SIGCHLD. Create on the main thread before any other
/// thread starts: the signals stay blocked and are read here.
class Signals {
public:
  Signals();
  ~Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  /// Readable if a signal is pending.
  int descriptor() const noexcept { return descriptor_; }
  /// The next pending signal, if any.
  std::optional<int> take() const;

private:
  int descriptor_;
};

/// The exit status of a command killed by this signal.
constexpr int status_of_signal(int number) {
  return 128 + number;
}

}  // namespace tool
