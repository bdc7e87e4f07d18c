#pragma once

#include <atomic>
#include <cstdint>

namespace simulator::model {

/// The reasons for watching crossings of the closed interfaces. Part of the unit's model; any thread of any process.
class Watch {
public:
  enum Reason : std::uint32_t { RECORDED = 1, COUNTED = 2, FAULTED = 4 };

  void set(Reason reason, bool on) noexcept {
    if (on) {
      reasons_.fetch_or(reason);
    } else {
      reasons_.fetch_and(~static_cast<std::uint32_t>(reason));
    }
  }
  bool has(Reason reason) const noexcept { return (reasons_.load(std::memory_order_relaxed) & reason) != 0; }
  bool any() const noexcept { return reasons_.load(std::memory_order_relaxed) != 0; }

private:
  std::atomic<std::uint32_t> reasons_{0};
};

}  // namespace simulator::model
