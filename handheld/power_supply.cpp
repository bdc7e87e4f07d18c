#include <iostream>

#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"

namespace {

/// Offset of the Celsius scale in hundredths of a kelvin.
constexpr int CELSIUS_ZERO = 27315;

/// 10203 becomes 1.02.03: one digit, two, and up to five. Throws std::out_of_range if the text has fewer than three
/// characters.
std::string dotted_version(const std::string& digits) {
  return digits.substr(0, 1) + "." + digits.substr(1, 2) + "." + digits.substr(3, 5);
}

}  // namespace

bool Handheld_Hardware::GetChargerStatus() {
  try {
    PSdriver->GetCharger_BatteryStatus();
    semExtVoltStatusIrq.wait();
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::GetChargerStatus()",
                             "Power Supply Driver Failure: Battery Charger Status");
    return false;
  }
  const bool present = (charge_status & handheld::EXTERNAL_VOLTAGE) != 0;
  if (present == external_voltage_) {
    return true;
  }
  external_voltage_ = present;
  external_voltage_publisher_.sendData(present);
  return true;
}

bool Handheld_Hardware::GetBatteryChargeStatus(int& charge) {
  try {
    PSdriver->GetBatteryRelativeStateOfCharge();
    semBatteryStatusIrq.wait();
    charge = battery_charge;
    PSdriver->GetBatteryAverageTimeToEmpty();
    semBatteryTimeIrq.wait();
    PSdriver->GetBatteryRunTimeToEmpty();
    semBatteryRunTimeIrq.wait();
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::GetBatteryChargeStatus()",
                             "Power Supply Driver Failure: Battery Relative Charge");
    return false;
  }
  return true;
}

VERSIONSDATA Handheld_Hardware::GetPowerSupplyVersion() {
  VERSIONSDATA row{"", "Power Supply Version"};
  try {
    PSdriver->GetSoftwareVersionNumber();
    semPowerSupplyVerIrq.wait();
    row.version = dotted_version(ps_ver.str());
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::GetPowerSupplyVersion()",
                             "Power Supply Driver Failure: Power Supply Version");
  } catch (...) {
    // Only the version list requests this row, so the report names the version list.
    std::cerr << "HARDWARE::GetPowerSupplyVersion err" << std::endl;
    handheld::report_failure("HARDWARE::GetVersionList()", "PSdriver Software Version is missing");
  }
  return row;
}

int Handheld_Hardware::PsTemperature() {
  return ps_temperature_valid_ ? ps_temp * 10 + CELSIUS_ZERO : 0;
}

int Handheld_Hardware::BatteryTemperature() {
  return battery_temperature_valid_ ? battery_temp * 100 + CELSIUS_ZERO : 0;
}

int Handheld_Hardware::Slot1MIC284Temperature() {
  return mic284_temperature_valid_ ? mic284_celsius_ * 100 + CELSIUS_ZERO : 0;
}

int Handheld_Hardware::BatteryPresent() {
  return (charge_status & handheld::BATTERY_ABSENT) == 0 ? 1 : 0;
}
