#include "simulator/model/power_supply.h"

#include <algorithm>
#include <mutex>
#include <string>

namespace simulator::model {

InterruptsFull::InterruptsFull()
    : std::runtime_error("interrupt not raised: a driver has " + std::to_string(PowerSupply::INTERRUPTS_KEPT) +
                         " unhandled ones") {}

/// Frees the seat of a driver that has died.
bool PowerSupply::is_free(Seat& seat) {
  if (seat.taken && seat.held.try_take() == 0) {
    seat.taken = false;
    seat.held.give();
  }
  return !seat.taken;
}

void PowerSupply::require_room() {
  const std::uint64_t raised = raised_.load();
  for (Seat& seat : seats_) {
    if (seat.taken && raised - seat.handled.load() >= INTERRUPTS_KEPT && !is_free(seat)) {
      throw InterruptsFull();
    }
  }
}

std::optional<PowerSupply::Driver> PowerSupply::enter() {
  const std::lock_guard guard(interrupts_mutex_);
  const auto seat = std::find_if(seats_.begin(), seats_.end(), [](Seat& each) { return is_free(each); });
  if (seat == seats_.end() || seat->held.try_take() != 0) {
    return std::nullopt;
  }
  seat->taken = true;
  seat->handled.store(raised_.load());
  return Driver{static_cast<std::size_t>(seat - seats_.begin()), raised_.load() + 1};
}

void PowerSupply::leave(const Driver& driver) {
  const std::lock_guard guard(interrupts_mutex_);
  seats_[driver.seat].taken = false;
  seats_[driver.seat].held.give();
}

std::uint64_t PowerSupply::raise_interrupt(std::int32_t communication_status) {
  std::uint64_t number = 0;
  {
    const std::lock_guard guard(interrupts_mutex_);
    require_room();
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

void PowerSupply::mark_interrupt_handled(Driver& driver) noexcept {
  const std::uint64_t number = driver.next++;
  seats_[driver.seat].handled.store(number);
  std::uint64_t handled = handled_.load();
  while (handled < number && !handled_.compare_exchange_weak(handled, number)) {
  }
  handled_signal_.raise();
}

bool PowerSupply::wait_interrupt_handled(std::uint64_t number, std::chrono::milliseconds limit) const {
  return handled_signal_.wait_until([&] { return handled_.load() >= number; }, limit);
}

}  // namespace simulator::model
