#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>

namespace simulator::memory {

/// A wake-up call in shared memory: a counter that only grows, and whoever sleeps until it has grown.
/// Lives in the unit's model; any thread of any process may use it, and a sleeper that is killed leaves no trace.
class Signal {
public:
  /// The count now; read it before testing the condition that the signal stands for.
  std::uint32_t count() const noexcept { return count_.load(std::memory_order_acquire); }

  /// Counts one up and wakes every sleeper.
  void raise() noexcept;

  /// Sleeps until the count differs from `seen`, or `limit` has passed; may return early.
  void wait(std::uint32_t seen, std::chrono::nanoseconds limit) const noexcept;

  /// Sleeps until `done()` is true, testing it whenever the count grows; false when `limit` passes first.
  template <typename Done>
  bool wait_until(Done done, std::chrono::nanoseconds limit) const {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::min<std::chrono::nanoseconds>(limit, LONGEST);
    for (;;) {
      const std::uint32_t seen = count();
      if (done()) {
        return true;
      }
      const auto left = deadline - Clock::now();
      if (left <= Clock::duration::zero()) {
        return false;
      }
      wait(seen, left);
    }
  }

private:
  static constexpr std::chrono::hours LONGEST{24 * 365};

  std::atomic<std::uint32_t> count_{0};
};

}  // namespace simulator::memory
