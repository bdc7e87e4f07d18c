#include "simulator/model/board.h"

#include <ctime>
#include <limits>

namespace simulator::model {
namespace {

constexpr std::uint64_t EMPTY = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t NEVER_DUE = std::numeric_limits<std::uint64_t>::max();

std::uint64_t now_ns() noexcept {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(now.tv_nsec);
}

constexpr std::uint64_t key_of(std::uint32_t space, std::uint32_t address) noexcept {
  return std::uint64_t{space} << 32 | address;
}

constexpr std::size_t rf_index(std::uint32_t address) noexcept {
  return (address - Board::RF_FIRST) / 4;
}

std::size_t hash_of(std::uint64_t key) noexcept {
  return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15u) >> 40);
}

}  // namespace

Board::Board() {
  for (auto& entry : registers_) {
    entry.key.store(EMPTY, std::memory_order_relaxed);
  }
}

bool Board::is_rf(std::uint32_t space, std::uint32_t address) noexcept {
  return space == 1 && address >= RF_FIRST && address <= RF_LAST && address % 4 == 0;
}

const Board::Register* Board::find(std::uint64_t key) const noexcept {
  for (std::size_t at = hash_of(key);; ++at) {
    const Register& entry = registers_[at % CAPACITY];
    const std::uint64_t held = entry.key.load(std::memory_order_acquire);
    if (held == EMPTY) {
      return nullptr;
    }
    if (held == key) {
      return &entry;
    }
  }
}

Board::Register* Board::find_or_add(std::uint64_t key) noexcept {
  if (const Register* present = find(key)) {
    return const_cast<Register*>(present);
  }
  if (key == EMPTY || registers_used_.load() >= FILL_LIMIT) {
    return nullptr;
  }
  for (std::size_t at = hash_of(key);; ++at) {
    Register& entry = registers_[at % CAPACITY];
    std::uint64_t held = EMPTY;
    if (entry.key.compare_exchange_strong(held, key)) {
      registers_used_.fetch_add(1);
      return &entry;
    }
    if (held == key) {
      return &entry;
    }
  }
}

std::uint32_t Board::read(std::uint32_t space, std::uint32_t address) noexcept {
  if (key_of(space, address) == key_of(1, RF_REQUEST)) {
    return finish_transfers();
  }
  if (!is_rf(space, address)) {
    return register_value(space, address);
  }
  if (address == RF_LAST) {
    return rf_present() ? register_value(space, address) : 0;
  }
  finish_transfers();
  return rf_shown_[rf_index(address)].load();
}

bool Board::write(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept {
  if (key_of(space, address) == key_of(1, RF_REQUEST)) {
    start_transfer(value);
    return true;
  }
  if (key_of(space, address) == key_of(1, RF_ADC) && adc_addressed()) {
    adc_channel_.store(value >> 12 & (ADC_CHANNELS - 1));
    return true;
  }
  return set_register(space, address, value);
}

bool Board::set_register(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept {
  if (key_of(space, address) == key_of(1, RF_REQUEST)) {
    return false;
  }
  if (is_rf(space, address)) {
    rf_registers_[rf_index(address)].store(value);
    return true;
  }
  Register* entry = find_or_add(key_of(space, address));
  if (entry == nullptr) {
    return false;
  }
  entry->value.store(value);
  return true;
}

std::uint32_t Board::register_value(std::uint32_t space, std::uint32_t address) const noexcept {
  if (key_of(space, address) == key_of(1, RF_REQUEST)) {
    return rf_pending_.load();
  }
  if (is_rf(space, address)) {
    return rf_registers_[rf_index(address)].load();
  }
  const Register* entry = find(key_of(space, address));
  return entry == nullptr ? 0 : entry->value.load(std::memory_order_relaxed);
}

std::uint32_t Board::shown(std::uint32_t space, std::uint32_t address) const noexcept {
  if (is_rf(space, address)) {
    const bool is_direct = address == RF_LAST;
    return is_direct && !rf_present() ? 0 : (is_direct ? rf_registers_ : rf_shown_)[rf_index(address)].load();
  }
  return register_value(space, address);
}

void Board::copy_shown(const Board& other) noexcept {
  for (std::size_t index = 0; index < RF_REGISTERS; ++index) {
    rf_shown_[index].store(other.rf_shown_[index].load());
    rf_registers_[index].store(other.rf_registers_[index].load());
  }
  rf_present_.store(other.rf_present());
  rf_pending_.store(other.rf_pending_.load());
  for (std::size_t at = 0; at < CAPACITY; ++at) {
    registers_[at].value.store(other.registers_[at].value.load());
    registers_[at].key.store(other.registers_[at].key.load(), std::memory_order_release);
  }
  registers_used_.store(other.registers_used_.load());
}

void Board::show(std::uint32_t space, std::uint32_t address, std::uint32_t value) noexcept {
  if (key_of(space, address) == key_of(1, RF_REQUEST)) {
    rf_pending_.store(value);
  } else if (is_rf(space, address)) {
    rf_shown_[rf_index(address)].store(value);
    rf_registers_[rf_index(address)].store(value);
  } else {
    set_register(space, address, value);
  }
}

void Board::set_adc_count(std::uint32_t channel, std::uint32_t count) noexcept {
  adc_counts_[channel % ADC_CHANNELS].store(count);
}

std::uint32_t Board::adc_count(std::uint32_t channel) const noexcept {
  return adc_counts_[channel % ADC_CHANNELS].load();
}

bool Board::adc_addressed() const noexcept {
  return (register_value(1, RF_CONTROL) & 1) == 0;
}

void Board::start_transfer(std::uint32_t address) noexcept {
  if (!is_rf(1, address)) {
    return;
  }
  const std::size_t index = rf_index(address);
  const std::uint32_t time = rf_transfer_time();
  const bool never = time == NEVER || !rf_present();
  rf_due_ns_[index].store(never ? NEVER_DUE : now_ns() + std::uint64_t{time} * 1000);
  rf_pending_.fetch_or(1u << index);
}

std::uint32_t Board::finish_transfers() noexcept {
  const std::uint32_t pending = rf_pending_.load();
  if (pending == 0) {
    return 0;
  }
  const std::uint64_t now = now_ns();
  std::uint32_t finished = 0;
  for (std::size_t index = 0; index < RF_REGISTERS; ++index) {
    if ((pending >> index & 1) != 0 && rf_due_ns_[index].load() <= now) {
      latch(index);
      finished |= 1u << index;
    }
  }
  return rf_pending_.fetch_and(~finished) & ~finished;
}

void Board::latch(std::size_t index) noexcept {
  const bool converts = (register_value(1, RF_LAST) & 1) != 0;
  const bool is_adc = index == rf_index(RF_ADC) && adc_addressed() && converts;
  rf_shown_[index].store(is_adc ? adc_count(selected_adc_channel()) : rf_registers_[index].load());
}

}  // namespace simulator::model
