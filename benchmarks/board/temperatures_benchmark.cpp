#include <benchmark/benchmark.h>

#include "benchmarks/comparison.h"
#include "benchmarks/the_unit.h"

namespace {

using benchmarks::Aim;

/// Two settling times of 200 microseconds and one RF transfer of 50.
constexpr double FLOOR = 450000;
constexpr unsigned int TEMPERATURE_CHANNEL = 2;

double conversion() {
  BASE_HARDWARE& interface = benchmarks::the_hardware();
  auto& hardware = static_cast<Handheld_Hardware&>(interface);
  return benchmarks::time_of([&] { benchmark::DoNotOptimize(hardware.get_RFAdc(TEMPERATURE_CHANNEL)); });
}

const bool REGISTERED = benchmarks::compare(
    {"get_RFAdc, against its waits", conversion, [] { return FLOOR; }, {Aim::Kind::RATIO_AT_MOST, 1.10}, 1000});

}  // namespace
