#include "simulator/drivers/radalt_watched.h"

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <string>

namespace simulator::drivers {
namespace {

using model::Fault;
using model::FaultKind;
using model::Point;
using model::UnitModel;

std::string register_args(unsigned space, unsigned address) {
  return "{\"space\":" + std::to_string(space) + ",\"address\":" + std::to_string(address) + "}";
}

std::string register_args(unsigned space, unsigned address, unsigned value) {
  return "{\"space\":" + std::to_string(space) + ",\"address\":" + std::to_string(address) +
         ",\"value\":" + std::to_string(value) + "}";
}

int status_of(const Fault& fault) noexcept {
  if (fault.kind != FaultKind::FAIL) {
    return 0;
  }
  return fault.value == 0 ? EIO : fault.value;
}

/// The word that a read delivers. Reading has its side effects even if the word is another.
unsigned word_of(UnitModel& unit, const Fault& fault, unsigned space, unsigned address) {
  const unsigned right = unit.board().read(space, address);
  switch (fault.kind) {
    case FaultKind::GARBAGE:
      return static_cast<unsigned>(model::wrong_value(fault, static_cast<std::int32_t>(right)));
    case FaultKind::STUCK:
      return unit.held_board().shown(space, address);
    default:
      if (unit.crossings().holds(Point::RADALT_READ)) {
        unit.held_board().show(space, address, right);
      }
      return right;
  }
}

/// Crosses at the point, then performs the operation unless the point's fault fails it.
template <typename Operation>
int cross_then(UnitModel& unit, Point point, const std::string& args, Operation operation) noexcept {
  try {
    const Fault fault = unit.cross(point, args);
    const int status = status_of(fault);
    return status != 0 ? status : operation(fault);
  } catch (const std::exception&) {
    return EIO;
  }
}

}  // namespace

int watched_init(UnitModel& unit) noexcept {
  const int result = cross_then(unit, Point::RADALT_INIT, "{}", [](const Fault&) { return 0; });
  return result == 0 ? unit.board().handle() : -std::abs(result);
}

int watched_read(UnitModel& unit, unsigned space, unsigned address, unsigned* value) noexcept {
  return cross_then(unit, Point::RADALT_READ, register_args(space, address), [&](const Fault& fault) {
    *value = word_of(unit, fault, space, address);
    return 0;
  });
}

int watched_write(UnitModel& unit, unsigned space, unsigned address, unsigned value) noexcept {
  return cross_then(unit, Point::RADALT_WRITE, register_args(space, address, value),
                    [&](const Fault&) { return unit.board().write(space, address, value) ? 0 : ENOSPC; });
}

int watched_lock_get(UnitModel& unit) noexcept {
  return cross_then(unit, Point::RADALT_LOCK_GET, "{}", [&](const Fault&) { return unit.board().lock().take(); });
}

int watched_lock_put(UnitModel& unit) noexcept {
  return cross_then(unit, Point::RADALT_LOCK_PUT, "{}", [&](const Fault&) { return unit.board().lock().give(); });
}

}  // namespace simulator::drivers
