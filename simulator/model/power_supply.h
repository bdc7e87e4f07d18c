#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "simulator/memory/shared_mutex.h"
#include "simulator/memory/signal.h"

namespace simulator::model {

/// The seven values of the power-supply controller.
enum class Reply : std::uint32_t {
  BATTERY_RELATIVE_STATE_OF_CHARGE,  ///< per cent
  CHARGER_BATTERY_STATUS,            ///< bit field; 0x01 external voltage, 0x08 charged, 0x10 no battery
  SOFTWARE_VERSION_NUMBER,           ///< decimal, 10203 for 1.02.03
  POWER_SUPPLY_TEMPERATURE,          ///< tenths of a degree Celsius
  BATTERY_TEMPERATURE,               ///< degrees Celsius
  BATTERY_AVERAGE_TIME_TO_EMPTY,     ///< in the controller's own unit
  BATTERY_RUN_TIME_TO_EMPTY,         ///< in the controller's own unit
  COUNT
};

/// Thrown if a driver has left INTERRUPTS_KEPT interrupts unhandled.
class InterruptsFull : public std::runtime_error {
public:
  InterruptsFull();
};

/// The power-supply controller. Part of the unit's model; any thread of any process.
class PowerSupply {
public:
  static constexpr std::size_t INTERRUPTS_KEPT = 256;
  static constexpr std::size_t DRIVERS_AT_MOST = 64;
  /// Initial value of led_status() and communication_status().
  static constexpr std::int32_t NOT_SET = -1;

  void set_reply(Reply reply, std::int32_t value) noexcept { replies_[index(reply)].store(value); }
  std::int32_t reply(Reply reply) const noexcept { return replies_[index(reply)].load(); }

  /// Time from a request to its reply, in microseconds.
  void set_reply_delay(std::uint32_t microseconds) noexcept { reply_delay_us_.store(microseconds); }
  std::chrono::microseconds reply_delay() const noexcept { return std::chrono::microseconds(reply_delay_us_.load()); }

  /// The last status set by the driver's user.
  void set_led_status(std::int32_t status) noexcept { led_status_.store(status); }
  std::int32_t led_status() const noexcept { return led_status_.load(); }
  void set_communication_status(std::int32_t status) noexcept { communication_status_.store(status); }
  std::int32_t communication_status() const noexcept { return communication_status_.load(); }

  /// Raises a switch interrupt in every driver that has the controller open and returns its number, counted from 1.
  /// None is lost: throws InterruptsFull, with nothing raised, if a driver has INTERRUPTS_KEPT interrupts left to
  /// handle.
  std::uint64_t raise_interrupt(std::int32_t communication_status);
  /// Number of interrupts raised so far.
  std::uint64_t interrupts_raised() const noexcept { return raised_.load(); }
  /// The value of interrupt `number`; none if not yet raised; that of the oldest kept if no longer kept.
  std::optional<std::int32_t> interrupt(std::uint64_t number) const;

  /// A driver that has the controller open: the interrupts from `next` on are kept for it.
  struct Driver {
    std::size_t seat;
    std::uint64_t next;  ///< the first interrupt that it has not handled
  };
  /// Enters a driver, which starts with the interrupts raised from now on; none if DRIVERS_AT_MOST are in. The calling
  /// thread is the driver's own: the driver is in until this thread calls leave() or ends in any other way.
  std::optional<Driver> enter();
  void leave(const Driver& driver);
  /// Called by the driver after the handler of its next interrupt has returned.
  void mark_interrupt_handled(Driver& driver) noexcept;
  /// Waits until a driver has handled interrupt `number`; false if `limit` passes first.
  bool wait_interrupt_handled(std::uint64_t number, std::chrono::milliseconds limit) const;

  /// Raised when a driver may have something to do.
  memory::Signal& wake_up() noexcept { return wake_up_; }

private:
  /// A place for a driver; its thread holds the mutex.
  struct Seat {
    memory::SharedMutex held;
    bool taken = false;
    std::atomic<std::uint64_t> handled{0};
  };

  static bool is_free(Seat& seat);
  void require_room();

  static constexpr std::size_t index(Reply reply) noexcept { return static_cast<std::size_t>(reply); }

  std::array<std::atomic<std::int32_t>, static_cast<std::size_t>(Reply::COUNT)> replies_{};
  std::atomic<std::uint32_t> reply_delay_us_{0};
  std::atomic<std::int32_t> led_status_{NOT_SET};
  std::atomic<std::int32_t> communication_status_{NOT_SET};
  mutable memory::SharedMutex interrupts_mutex_;
  std::atomic<std::uint64_t> raised_{0};
  std::atomic<std::uint64_t> handled_{0};
  std::array<std::int32_t, INTERRUPTS_KEPT> interrupts_{};
  std::array<Seat, DRIVERS_AT_MOST> seats_;  ///< `taken` is guarded by interrupts_mutex_
  memory::Signal wake_up_;
  memory::Signal handled_signal_;
};

}  // namespace simulator::model
