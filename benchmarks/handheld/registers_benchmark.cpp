#include <benchmark/benchmark.h>

#include "benchmarks/comparison.h"
#include "benchmarks/the_unit.h"
#include "radalt.h"

namespace {

using benchmarks::Aim;

constexpr int READS = 20000;
constexpr unsigned int SPACE = 1;
constexpr unsigned int CARD_IDENTIFIER = 0;

double peek() {
  HARDWARE& hardware = benchmarks::the_hardware();
  return benchmarks::time_of_each(READS, [&] { benchmark::DoNotOptimize(hardware.Peek(SPACE, CARD_IDENTIFIER)); });
}

double driver_read() {
  const int handle = Radalt_Init();
  return benchmarks::time_of_each(READS, [handle] {
    unsigned int value = 0;
    Radalt_Read(handle, SPACE, CARD_IDENTIFIER, &value);
    benchmark::DoNotOptimize(value);
  });
}

const bool REGISTERED = benchmarks::compare(
    {"Peek through the virtual slot, against Radalt_Read", peek, driver_read, {Aim::Kind::EXCESS_AT_MOST, 3}, 500});

}  // namespace
