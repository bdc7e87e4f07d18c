#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "simulator/memory/shared_mutex.h"

namespace simulator::model {

/// The radar-altimeter board: registers in numbered address spaces, the RF board behind its request register, the RF
/// ADC and the board lock. Lives in the unit's model; any thread of any process; single accesses are atomic.
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

  /// The board as the driver sees it. An RF register (but for the last) shows what the last transfer of it brought.
  std::uint32_t read(std::uint32_t space, std::uint32_t address) noexcept;
  /// False when the board has no room for one more register (4096 different ones, none at the very last address of
  /// the very last space).
  bool write(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept;

  /// The board from the workbench: sets and shows what a register holds, without its side effects. RF registers are
  /// the RF board's own. False as write(), and for the request register.
  bool set_register(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept;
  std::uint32_t register_value(std::uint32_t space, std::uint32_t address) const noexcept;

  /// The count that the RF ADC converts on a channel (0 to 7).
  void set_adc_count(std::uint32_t channel, std::uint32_t count) noexcept;
  std::uint32_t adc_count(std::uint32_t channel) const noexcept;
  std::uint32_t selected_adc_channel() const noexcept { return adc_channel_.load(); }

  /// How long one RF transfer takes, in microseconds, or NEVER; applies to transfers that start from now on.
  void set_rf_transfer_time(std::uint32_t microseconds) noexcept { rf_transfer_us_.store(microseconds); }
  std::uint32_t rf_transfer_time() const noexcept { return rf_transfer_us_.load(); }
  /// An absent RF board finishes no transfer, and its last register reads 0.
  void set_rf_present(bool present) noexcept { rf_present_.store(present); }
  bool rf_present() const noexcept { return rf_present_.load(); }

  /// What opening the board returns; the handle that accesses must carry. 0 or more.
  void set_handle(std::int32_t handle) noexcept { handle_.store(handle); }
  std::int32_t handle() const noexcept { return handle_.load(std::memory_order_relaxed); }

  /// The board lock. The holder is a thread; its death gives the lock to the next taker.
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
  std::array<std::atomic<std::uint32_t>, RF_REGISTERS> rf_registers_{};  ///< the RF board's own
  std::array<std::atomic<std::uint32_t>, RF_REGISTERS> rf_shown_{};      ///< what the last transfer brought
  std::atomic<std::uint32_t> registers_used_{0};
  std::array<Register, CAPACITY> registers_;
};

}  // namespace simulator::model
