#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>

#include "handheld/driver_link.h"
#include "handheld/handheld_hardware.h"
#include "handheld/shell.h"

namespace {

const char MIC284_FILE[] = "/tmp/MIC284";
const char OMAP_FILE[] = "/sys/class/hwmon/hwmon0/device/celsius";

/// Whole degrees Celsius from the hexadecimal register value that the sensor's tool prints; its low byte is signed.
/// Text without hexadecimal digits is 0. Numbers beyond 32 bits saturate, as the unit's own 32-bit long does.
std::int32_t mic284_degrees(const std::string& text) {
  const long number = std::strtol(text.c_str(), nullptr, 16);
  const auto value = static_cast<std::int32_t>(
      std::clamp<long>(number, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
  return (value & 0x80) != 0 ? static_cast<std::int8_t>(value & 0xFF) : value;
}

/// Appends the processor's row. The number is read into the row that holds the previous temperature, and the row is
/// appended even if nothing could be read: an empty file repeats that temperature.
void append_omap_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row) {
  std::ifstream file(OMAP_FILE);
  if (!file.is_open()) {
    return;
  }
  file >> row.temperature;
  row.name = "Slot 1 OMAP Temperature";
  list.push_back(row);
}

}  // namespace

void Handheld_Hardware::append_power_supply_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row) {
  try {
    PSdriver->GetPowerSupplyTemperatureValue();
    semPowerSupplyTempIrq.wait();
    row = {static_cast<float>(ps_temp) / 10, "Power Supply Temperature"};
    list.push_back(row);
    ps_temperature_valid_ = true;
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::GetTemperature() Power Supply Temperature",
                             "Power Supply Driver Failure: Get Power Supply Temperature");
    ps_temperature_valid_ = false;
  }
}

void Handheld_Hardware::append_battery_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row) {
  try {
    const bool fitted = (charge_status & handheld::BATTERY_ABSENT) == 0;
    if (fitted) {
      PSdriver->GetBatteryTemperature();
      semBatteryTempIrq.wait();
      row = {static_cast<float>(battery_temp), "Battery Temperature"};
    } else {
      row = {0, "Battery Temp Off (Temp Invalid!)"};
    }
    list.push_back(row);
    battery_temperature_valid_ = fitted;
  } catch (const psdriverError&) {
    handheld::report_failure("Handheld_Hardware::GetTemperature() Battery Temperature",
                             "Power Supply Driver Failure: Get Battery Temperature");
    battery_temperature_valid_ = false;
  }
}

void Handheld_Hardware::append_mic284_row(std::vector<TEMPERATUREDATA>& list, TEMPERATUREDATA& row) {
  handheld::run(i2c_command_str() + "i2c_read 3 0x48 0 > /tmp/MIC284");
  std::ifstream file(MIC284_FILE);
  if (!file.is_open()) {
    mic284_temperature_valid_ = false;
    mic284_celsius_ = 0;
    return;
  }
  std::string line;
  std::getline(file, line);
  mic284_celsius_ = mic284_degrees(line);
  mic284_temperature_valid_ = true;
  row = {static_cast<float>(mic284_celsius_), "Slot 1 MIC284 Temperature"};
  list.push_back(row);
}

int Handheld_Hardware::GetTemperature(std::vector<TEMPERATUREDATA>& list) {
  list.clear();
  TEMPERATUREDATA row = rftemp();
  list.push_back(row);
  append_power_supply_row(list, row);
  append_battery_row(list, row);
  append_mic284_row(list, row);
  append_omap_row(list, row);
  list.push_back({getDigitalBoardTemp(digital_board_scale_), "Digital Board Temperature"});
  return 1;
}
