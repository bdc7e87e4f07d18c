#include "benchmarks/comparison.h"
#include "benchmarks/the_unit.h"

namespace {

using benchmarks::Aim;

/// Backlight to its maximum, cover closed, no shutdown request.
constexpr int INTERRUPT = 0x60;

double interrupt() {
  benchmarks::the_hardware();
  return benchmarks::time_of([] { Handheld_Hardware::PowerSwitch(INTERRUPT); });
}

double files() {
  return benchmarks::time_of([] {
    benchmarks::read_file("/sys/class/backlight/omap-bl/max_brightness");
    benchmarks::write_file("/sys/class/backlight/omap-bl/brightness", "255");
    benchmarks::write_file("/sys/class/backlight/omap-bl/bl_power", "0");
  });
}

const bool REGISTERED = benchmarks::compare(
    {"interrupt without shutdown request, against its files", interrupt, files, {Aim::Kind::RATIO_AT_MOST, 1.2}, 2000});

}  // namespace
