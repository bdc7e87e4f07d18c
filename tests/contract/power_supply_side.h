#pragma once

#include <memory>
#include <string>

namespace contract {

/// The controller behind the power-supply driver, as the contract tests set and observe it. Each driver implementation
/// has its own. The controller starts without faults and answers at once. Requests, registrations and commands are
/// named after the driver's operations ("GetBatteryTemperature").
class PowerSupplySide {
public:
  virtual ~PowerSupplySide() = default;

  /// Sets the answer to the request from now on.
  virtual void answer(const std::string& request, int value) = 0;
  /// The next call of the operation fails, once; "psdriver": opening the device.
  virtual void fail_next(const std::string& operation) = 0;
  /// The next request of that kind is accepted but never answered.
  virtual void swallow_next(const std::string& request) = 0;
  virtual void raise_interrupt(int value) = 0;

  /// Whether this is the last status set.
  virtual bool led_status_is(int status) = 0;
  virtual bool communication_status_is(int status) = 0;
};

/// The controller behind the driver that this program is linked to; one at a time, made before the driver.
std::unique_ptr<PowerSupplySide> make_power_supply_side();

}  // namespace contract
