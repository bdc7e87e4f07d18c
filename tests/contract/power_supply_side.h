#pragma once

#include <memory>
#include <string>

namespace contract {

/// The far side of one power-supply driver: the controller, as the contract tests set and see it. Each implementation
/// of the driver brings its own, and stands for one controller without faults that answers at once. Requests,
/// registrations and commands go by the names of the driver's operations ("GetBatteryTemperature").
class PowerSupplySide {
public:
  virtual ~PowerSupplySide() = default;

  /// What the request is answered with from now on.
  virtual void answer(const std::string& request, int value) = 0;
  /// The next call of the operation fails, once; "psdriver": opening the device.
  virtual void fail_next(const std::string& operation) = 0;
  /// The next request of that kind is taken and never answered.
  virtual void swallow_next(const std::string& request) = 0;
  virtual void raise_interrupt(int value) = 0;

  /// Whether that is the status last set.
  virtual bool led_status_is(int status) = 0;
  virtual bool communication_status_is(int status) = 0;
};

/// The controller behind the driver that this program is linked with; one at a time, made before the driver.
std::unique_ptr<PowerSupplySide> make_power_supply_side();

}  // namespace contract
