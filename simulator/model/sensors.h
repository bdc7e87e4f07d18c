#pragma once

#include <atomic>
#include <cstdint>

namespace simulator::model {

/// The MIC284 temperature sensor and the tool that reads it. Part of the unit's model; any thread of any process.
class Sensors {
public:
  /// The sensor's temperature register, printed by i2c_read in hexadecimal.
  void set_mic284(std::uint32_t value) noexcept { mic284_.store(value); }
  std::uint32_t mic284() const noexcept { return mic284_.load(); }

  /// The exit status of i2c_read, 0 to 255.
  void set_i2c_read_status(std::int32_t status) noexcept { i2c_read_status_.store(status); }
  std::int32_t i2c_read_status() const noexcept { return i2c_read_status_.load(); }

  /// Whether i2c_read prints the register at all.
  void set_i2c_read_prints(bool prints) noexcept { i2c_read_prints_.store(prints); }
  bool i2c_read_prints() const noexcept { return i2c_read_prints_.load(); }

private:
  std::atomic<std::uint32_t> mic284_{0};
  std::atomic<std::int32_t> i2c_read_status_{0};
  std::atomic<bool> i2c_read_prints_{true};
};

}  // namespace simulator::model
