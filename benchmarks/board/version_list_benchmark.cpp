#include <vector>

#include "benchmarks/comparison.h"
#include "benchmarks/the_unit.h"
#include "handheld/driver_link.h"

namespace {

using benchmarks::Aim;

/// Three RF transfers of 50 microseconds.
constexpr double WAITS = 150000;

double version_list() {
  BASE_HARDWARE& hardware = benchmarks::the_hardware();
  std::vector<VERSIONSDATA> list;
  return benchmarks::time_of([&] { hardware.GetVersionList(list); });
}

/// The list's unavoidable costs besides the waits.
void gather() {
  benchmarks::read_file("/sys/class/omappci/FPGA_ver");
  benchmarks::read_file("/sys/class/omappci/Board_rev");
  benchmarks::read_file("/sys/bus/platform/devices/omap-jtag/CPLD_ver");
  PSdriver->GetSoftwareVersionNumber();
  semPowerSupplyVerIrq.wait();
}

double unavoidable() {
  benchmarks::the_hardware();
  return WAITS + benchmarks::time_of(gather);
}

const bool REGISTERED = benchmarks::compare({"GetVersionList, against its waits, files and driver's reply",
                                             version_list,
                                             unavoidable,
                                             {Aim::Kind::RATIO_AT_MOST, 1.15},
                                             500});

}  // namespace
