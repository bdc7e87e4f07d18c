#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/base_hardware.h"
#include "messaging/dds_publisher.h"
#include "messaging/dds_subscriber.h"

/// The handheld unit: power supply, battery and charger, temperature sensors, power switch and cover, backlight,
/// network. The concrete class adds the board.
///
/// Operations run on the calling thread. Those that query the power supply wait without limit for its reply; two
/// threads that wait for the same kind of reply may each take the other's. Operations do not exclude each other; the
/// power-switch handler holds the framework lock.
class __attribute__((visibility("default"))) Handheld_Hardware : public BASE_HARDWARE {
public:
  /// Starts the subscription to the user interface's done-loading message, makes the external-voltage publisher and the
  /// power-supply driver. `n` is the number of fans. Throws what these throw.
  explicit Handheld_Hardware(const int& n);
  /// Destroys the publisher and the subscription. The driver stays; its power-switch interrupts then have no object.
  /// Not to be called while an interrupt is being handled.
  ~Handheld_Hardware();

  /// Registers the reply functions and, last, the power-switch handler with the driver. A driver failure ends the
  /// registration and is sent as an event.
  void InitHardware();

  /// @name Operations of BASE_HARDWARE
  /// @{
  int GetVersionList(std::vector<VERSIONSDATA>& list) override = 0;
  int GetBacklight(int& level) override;
  int GetTemperature(std::vector<TEMPERATUREDATA>& list) override;
  void AdjustFanSpeeds(std::vector<FANDATA>& list) override;
  void shutdown() override;
  bool GetBatteryChargeStatus(int& charge) override;
  bool GetChargerStatus() override;
  void StartDHCP(std::string interface) override;
  void SetupStaticIP(std::string interface) override;
  void NetworkOff(std::string interface) override;
  int GetMaxInterfaces() override;
  void ReadBusVoltages() override;
  int PsTemperature() override;
  int BatteryTemperature() override;
  int Slot1MIC284Temperature() override;
  int BatteryPresent() override;
  /// @}

  /// @name Supplied by the concrete class
  /// @{

  /// Directory of the I2C command-line tools, with its trailing slash.
  virtual std::string i2c_command_str() = 0;
  /// Writes a board register; the driver's status (0: done).
  virtual int write_hw(int handle, unsigned int space, unsigned int address, unsigned int value) = 0;
  /// Reads a board register into `*value`; the driver's status (0: done).
  virtual int read_hw(int handle, unsigned int space, unsigned int address, unsigned int* value) = 0;
  /// The RF board's temperature row.
  virtual TEMPERATUREDATA rftemp() = 0;
  /// One conversion of an RF ADC channel, 0 to 7; 0 without an RF ADC.
  virtual unsigned int get_RFAdc(unsigned int channel) = 0;
  /// The digital board's temperature: raw count times `scale` (degrees Celsius per count).
  virtual float getDigitalBoardTemp(float scale) = 0;
  /// @}

  /// The power supply's version row; its version is empty if it could not be read.
  VERSIONSDATA GetPowerSupplyVersion();
  /// Sets the system LED to the state of a loaded user interface; a driver failure is sent as an event. Runs on a DDS
  /// delivery thread, and waits there for the driver if it has not been made yet.
  void UIDoneLoadingDDS_SubCallback(char const* topic);
  /// Drives the display backlight to the device's maximum.
  void setMaxBacklight();
  /// The power-switch and cover handler. Runs on the driver's thread and may block it until the user has answered.
  static void PowerSwitch(int value);

  /// @name Registers
  /// Address space 1 unless one is given. The driver's status is ignored: a failed read returns the value that the
  /// driver left, else 0. They take no lock; the caller of a sequence must hold the board lock.
  /// @{
  int Poke(unsigned int address, unsigned int value);
  int Poke(unsigned int space, unsigned int address, unsigned int value);
  unsigned int Peek(unsigned int address);
  unsigned int Peek(unsigned int space, unsigned int address);
  /// An RF board register (128 to 248, multiples of 4) through the request register; 0 if the transfer times out.
  /// Throws Varnok::Operation_errors::DataOutOfRangeException for any other address. The caller holds the board lock.
  unsigned int Peek_RFregister(unsigned int address);
  /// @}

protected:
  /// Returns once the start-up of the done-loading subscription has ended; no time limit.
  void wait_for_subscription() const;

  float kelvin_offset_;        ///< degrees Celsius to kelvin
  std::int32_t board_handle_;  ///< handle of the board driver

private:
  bool external_voltage_;  ///< the state published last
  Varnok::DDS_Subscriber<Varnok::DDS_VoidMessage> ui_done_loading_;
  Varnok::DDS_Publisher<bool> external_voltage_publisher_;
  std::int32_t max_interfaces;   ///< network interfaces of the unit
  float digital_board_scale_;    ///< degrees Celsius per count
  std::int32_t mic284_celsius_;  ///< last MIC284 reading, whole degrees
  bool ps_temperature_valid_;    ///< the three flags: whether the last temperature list could read the value
  bool battery_temperature_valid_;
  bool mic284_temperature_valid_;

  void append_power_supply_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row);
  void append_battery_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row);
  void append_mic284_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row);
};
