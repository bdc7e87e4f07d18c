#pragma once

#include <initializer_list>
#include <optional>

namespace tool {

/// Signals that this program takes in its own time. Create on the main thread before any other thread starts: they are
/// blocked and read here. Programs that are started meanwhile must unblock them.
class Signals {
public:
  explicit Signals(std::initializer_list<int> watched);
  /// Unblocks them again.
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

}  // namespace tool
