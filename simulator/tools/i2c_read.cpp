#include <unistd.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/model/unit_model.h"

// i2c_read BUS DEVICE REGISTER: prints one register of an I2C device as hexadecimal text. The unit has one such
// device, the MIC284 temperature sensor: bus 3, device 0x48, register 0.
namespace {

using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::UnitModel;

constexpr int FAILED = 1;
constexpr int MISUSED = 2;

/// The whole text as a number, decimal or hexadecimal (0x); throws if it is not one.
unsigned long number(const std::string& text) {
  std::size_t used = 0;
  const unsigned long value = std::stoul(text, &used, 0);
  if (used != text.size()) {
    throw std::invalid_argument(text);
  }
  return value;
}

/// The register as the tool prints it.
unsigned printed(UnitModel& unit, const Fault& fault) {
  const std::uint32_t right = unit.sensors().mic284();
  switch (fault.kind) {
    case FaultKind::GARBAGE:
      return static_cast<unsigned>(simulator::model::wrong_value(fault, static_cast<std::int32_t>(right)));
    case FaultKind::STUCK:
      return static_cast<unsigned>(unit.crossings().held(Point::I2C_READ));
    default:
      unit.crossings().delivered(Point::I2C_READ, static_cast<std::int32_t>(right));
      return right;
  }
}

/// Prints the sensor's register according to the unit's settings. Returns the exit status.
int read_mic284(UnitModel& unit) {
  const Fault fault = unit.watched() ? unit.cross(Point::I2C_READ, "{}") : Fault{};
  if (fault.kind == FaultKind::FAIL) {
    std::fprintf(stderr, "i2c_read: device 0x48 on bus 3 does not answer\n");
    return fault.value == 0 ? FAILED : fault.value;
  }
  while (fault.kind == FaultKind::NO_REPLY) {
    ::pause();
  }
  if (unit.sensors().i2c_read_prints()) {
    std::printf("%x\n", printed(unit, fault));
  }
  return unit.sensors().i2c_read_status();
}

int run(const std::vector<std::string>& arguments) {
  const bool is_mic284 = number(arguments[0]) == 3 && number(arguments[1]) == 0x48 && number(arguments[2]) == 0;
  if (!is_mic284) {
    std::fprintf(stderr, "i2c_read: no response on bus %s, device %s, register %s\n", arguments[0].c_str(),
                 arguments[1].c_str(), arguments[2].c_str());
    return FAILED;
  }
  return read_mic284(UnitModel::of_this_unit());
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() != 3) {
    std::fprintf(stderr, "usage: i2c_read BUS DEVICE REGISTER\n");
    return MISUSED;
  }
  try {
    return run(arguments);
  } catch (const std::logic_error&) {
    std::fprintf(stderr, "usage: i2c_read BUS DEVICE REGISTER (numbers)\n");
    return MISUSED;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "i2c_read: %s\n", error.what());
    return FAILED;
  }
}
