#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>

namespace simulator::memory {

/// A wake-up signal in shared memory: an increasing counter and its sleepers. Part of the unit's model; any thread of
/// any process. A killed sleeper leaves nothing behind.
class Signal {
public:
  /// The current count; read it before testing the signalled condition.
  std::uint32_t count() const noexcept { return count_.load(std::memory_order_acquire); }

  /// Increments the count and wakes all sleepers.
  void raise() noexcept;

  /// Sleeps until the count differs from `seen` or `limit` has passed; may return early.
  void wait(std::uint32_t seen, std::chrono::nanoseconds limit) const noexcept;

  /// Sleeps until `done()` is true, testing it whenever the count increases. Returns false if `limit` passes first.
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
