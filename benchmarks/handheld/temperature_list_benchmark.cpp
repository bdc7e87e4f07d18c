#include <cstdlib>
#include <vector>

#include "benchmarks/comparison.h"
#include "benchmarks/the_unit.h"
#include "handheld/driver_link.h"

namespace {

using benchmarks::Aim;

/// Nanoseconds that one RF conversion waits.
constexpr double WAITS = 450000;

double temperature_list() {
  BASE_HARDWARE& hardware = benchmarks::the_hardware();
  std::vector<TEMPERATUREDATA> list;
  return benchmarks::time_of([&] { hardware.GetTemperature(list); });
}

/// The list's unavoidable costs besides the waits.
void gather() {
  PSdriver->GetPowerSupplyTemperatureValue();
  semPowerSupplyTempIrq.wait();
  PSdriver->GetBatteryTemperature();
  semBatteryTempIrq.wait();
  [[maybe_unused]] const int status = std::system("/home/radalt/bin/i2c_read 3 0x48 0 > /tmp/MIC284");
  benchmarks::read_file("/tmp/MIC284");
  benchmarks::read_file("/sys/class/hwmon/hwmon0/device/celsius");
}

double unavoidable() {
  benchmarks::the_hardware();
  return WAITS + benchmarks::time_of(gather);
}

const bool REGISTERED = benchmarks::compare({"GetTemperature, against its waits, command, files and driver's replies",
                                             temperature_list,
                                             unavoidable,
                                             {Aim::Kind::RATIO_AT_MOST, 1.15},
                                             300});

}  // namespace
