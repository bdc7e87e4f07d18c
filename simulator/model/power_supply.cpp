#include "simulator/model/power_supply.h"

#include <algorithm>
#include <mutex>

namespace simulator::model {

std::uint64_t PowerSupply::raise_interrupt(std::int32_t communication_status) {
  std::uint64_t number = 0;
  {
    const std::lock_guard guard(interrupts_mutex_);
    number = raised_.load() + 1;
    interrupts_[(number - 1) % INTERRUPTS_KEPT] = communication_status;
    raised_.store(number);
  }
  wake_up_.raise();
  return number;
}

std::optional<std::int32_t> PowerSupply::interrupt(std::uint64_t number) const {
  const std::lock_guard guard(interrupts_mutex_);
  const std::uint64_t raised = raised_.load();
  if (number == 0 || number > raised) {
    return std::nullopt;
  }
  const std::uint64_t oldest = raised > INTERRUPTS_KEPT ? raised - INTERRUPTS_KEPT + 1 : 1;
  return interrupts_[(std::max(number, oldest) - 1) % INTERRUPTS_KEPT];
}

void PowerSupply::mark_interrupt_handled(std::uint64_t number) noexcept {
  std::uint64_t handled = handled_.load();
  while (handled < number && !handled_.compare_exchange_weak(handled, number)) {
  }
  handled_signal_.raise();
}

bool PowerSupply::wait_interrupt_handled(std::uint64_t number, std::chrono::milliseconds limit) const {
  return handled_signal_.wait_until([&] { return handled_.load() >= number; }, limit);
}

}  // namespace simulator::model
