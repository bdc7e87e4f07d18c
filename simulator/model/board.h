#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "simulator/memory/shared_mutex.h"

namespace simulator::model {

/// The radar-altimeter board: registers in numbered address spaces, the RF board behind its request register, the RF
/// ADC and the board lock. Part of the unit's model; any thread of any process; single accesses are atomic.
class Board {
public:
  /// Transfer time of an RF board that never answers.
  static constexpr std::uint32_t NEVER = 0xFFFFFFFF;
  static constexpr std::uint32_t RF_FIRST = 128;       ///< first RF register, in address space 1
  static constexpr std::uint32_t RF_LAST = 248;        ///< last RF register; bit 0: the RF ADC converts
  static constexpr std::uint32_t RF_ADC = 196;         ///< RF ADC: channel (bits 12 to 14) on write, count on read
  static constexpr std::uint32_t RF_REQUEST = 252;     ///< RF transfer request on write, pending bits on read
  static constexpr std::uint32_t RF_CONTROL = 131076;  ///< bit 0 must be clear while the RF ADC is addressed
  static constexpr std::uint32_t ADC_CHANNELS = 8;

  Board();

  /// The board as the driver sees it. An RF register (except the last) shows the value of its last transfer.
  std::uint32_t read(std::uint32_t space, std::uint32_t address) noexcept;
  /// Returns false if the register cannot be stored: the board holds 4096 different registers, and never the last
  /// address of the last space.
  bool write(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept;

  /// Access from outside, without side effects. RF registers are those of the RF board itself. Setting returns false as
  /// write() does, and for the request register.
  bool set_register(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept;
  std::uint32_t register_value(std::uint32_t space, std::uint32_t address) const noexcept;

  /// What the driver would read now, without side effects: an RF register (except the last) shows its last transfer.
  std::uint32_t shown(std::uint32_t space, std::uint32_t address) const noexcept;
  /// Makes shown() return what `other` shows now.
  void copy_shown(const Board& other) noexcept;
  /// Makes shown() return that value of one register.
  void show(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept;

  /// The RF ADC count of a channel (0 to 7).
  void set_adc_count(std::uint32_t channel, std::uint32_t count) noexcept;
  std::uint32_t adc_count(std::uint32_t channel) const noexcept;
  std::uint32_t selected_adc_channel() const noexcept { return adc_channel_.load(); }

  /// Duration of an RF transfer in microseconds, or NEVER; applies to transfers started afterwards.
  void set_rf_transfer_time(std::uint32_t microseconds) noexcept { rf_transfer_us_.store(microseconds); }
  std::uint32_t rf_transfer_time() const noexcept { return rf_transfer_us_.load(); }
  /// Without an RF board no transfer finishes, and the last RF register reads 0.
  void set_rf_present(bool present) noexcept { rf_present_.store(present); }
  bool rf_present() const noexcept { return rf_present_.load(); }

  /// The handle that opening the board returns and accesses must pass. 0 or more.
  void set_handle(std::int32_t handle) noexcept { handle_.store(handle); }
  std::int32_t handle() const noexcept { return handle_.load(std::memory_order_relaxed); }

  /// The board lock, held by a thread. If the holder dies, the next taker gets the lock.
  memory::SharedMutex& lock() noexcept { return lock_; }

private:
  static constexpr std::size_t CAPACITY = 8192;
  static constexpr std::size_t FILL_LIMIT = 4096;
  static constexpr std::size_t RF_REGISTERS = (RF_LAST - RF_FIRST) / 4 + 1;

  struct Register {
    std::atomic<std::uint64_t> key;
    std::atomic<std::uint32_t> value{0};
  };

  static bool is_rf(std::uint32_t space, std::uint32_t address) noexcept;
  const Register* find(std::uint64_t key) const noexcept;
  Register* find_or_add(std::uint64_t key) noexcept;
  void start_transfer(std::uint32_t address) noexcept;
  std::uint32_t finish_transfers() noexcept;
  void latch(std::size_t index) noexcept;
  bool adc_addressed() const noexcept;

  memory::SharedMutex lock_{memory::SharedMutex::Kind::CHECKED};
  std::atomic<std::int32_t> handle_{3};
  std::atomic<bool> rf_present_{true};
  std::atomic<std::uint32_t> rf_transfer_us_{20};
  std::atomic<std::uint32_t> adc_channel_{0};
  std::array<std::atomic<std::uint32_t>, ADC_CHANNELS> adc_counts_{};
  std::atomic<std::uint32_t> rf_pending_{0};  ///< bit n: the transfer of RF register n is pending
  std::array<std::atomic<std::uint64_t>, RF_REGISTERS> rf_due_ns_{};
  std::array<std::atomic<std::uint32_t>, RF_REGISTERS> rf_registers_{};  ///< values on the RF board
  std::array<std::atomic<std::uint32_t>, RF_REGISTERS> rf_shown_{};      ///< values of the last transfers
  std::atomic<std::uint32_t> registers_used_{0};
  std::array<Register, CAPACITY> registers_;
};

}  // namespace simulator::model
