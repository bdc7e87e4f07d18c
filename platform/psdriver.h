#pragma once

#include <stdexcept>
#include <string>

/// Thrown by the power-supply driver if its device cannot be reached or rejects an operation.
class __attribute__((visibility("default"))) psdriverError : public std::runtime_error {
public:
  explicit psdriverError(const std::string& what);
  ~psdriverError() override;
};

/// The power-supply driver: the unit's power-supply controller on the I2C bus.
///
/// Every query is asynchronous: a request returns at once and is answered later by exactly one call of the function
/// registered for its kind of reply. Replies and switch interrupts arrive one at a time on one thread of the driver.
/// Requests may be made from any thread. Every operation may throw psdriverError; it has then had no effect and, for a
/// request, no reply will come. A reply whose kind has no registered function is dropped.
class __attribute__((visibility("default"))) psdriver {
public:
  using Callback = void (*)(int);

  /// Opens the controller behind `device` (an I2C bus device, "/dev/i2c-3"). Throws psdriverError if it cannot be
  /// opened.
  explicit psdriver(std::string device);
  /// Stops the driver's thread; no call-back runs afterwards. Not to be called from a call-back.
  ~psdriver();
  psdriver(const psdriver&) = delete;
  psdriver& operator=(const psdriver&) = delete;

  /// Registration of the reply functions, one per kind; a later registration replaces the earlier one.
  void SetBatteryRelativeStateOfChargeCallback(Callback reply);  ///< per cent, 0 to 100
  void SetCharger_BatteryStatusCallback(Callback reply);         ///< charger and battery status bit field
  void SetSoftwareVersionNumberCallback(Callback reply);         ///< version as one decimal number, 10203 for 1.02.03
  void SetPowerSupplyTemperatureValueCallback(Callback reply);   ///< tenths of a degree Celsius
  void SetBatteryTemperatureCallback(Callback reply);            ///< whole degrees Celsius
  void SetBatteryAverageTimeToEmptyCallback(Callback reply);     ///< a time, in the controller's own unit
  void SetBatteryRunTimeToEmptyCallback(Callback reply);         ///< a time, in the controller's own unit
  /// The handler of power-switch and cover interrupts; its argument is the communication status bit field.
  void SetSwitchInterruptCallback(Callback handler);

  /// Requests, one per kind of reply.
  void GetBatteryRelativeStateOfCharge();
  void GetCharger_BatteryStatus();
  void GetSoftwareVersionNumber();
  void GetPowerSupplyTemperatureValue();
  void GetBatteryTemperature();
  void GetBatteryAverageTimeToEmpty();
  void GetBatteryRunTimeToEmpty();

  /// Sets the system LED; status 12 is the state of a loaded user interface. `status` may be overwritten with the
  /// controller's answer when `answer` is true; the unit passes false.
  void SetSystemLEDStatus(int& status, bool answer);
  /// Tells the controller the state of the user interface; 0x100: the user interface has exited. `answer` as above.
  void SetUserInterface_CommunicationStatus(int& status, bool answer);

private:
  class Link;
  Link* link_;
};
