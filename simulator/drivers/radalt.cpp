#include <atomic>
#include <cerrno>
#include <exception>
#include <system_error>

#include "simulator/drivers/radalt_watched.h"
#include "simulator/model/unit_model.h"

#include <radalt.h>

// Stand-in of the radar-altimeter board driver; the board is in the model.
namespace {

using simulator::model::UnitModel;
namespace drivers = simulator::drivers;

/// The unit whose board is open; null before the first successful Radalt_Init().
std::atomic<UnitModel*> opened{nullptr};

/// The unit of the handle; null if the handle is invalid.
UnitModel* unit_of(int handle) noexcept {
  UnitModel* unit = opened.load(std::memory_order_acquire);
  return unit != nullptr && handle == unit->board().handle() ? unit : nullptr;
}

}  // namespace

int Radalt_Init() {
  try {
    UnitModel& unit = UnitModel::of_this_unit();
    const int result = unit.watched() ? drivers::watched_init(unit) : unit.board().handle();
    if (result >= 0) {
      opened.store(&unit, std::memory_order_release);
    }
    return result;
  } catch (const std::system_error& error) {
    return -error.code().value();
  } catch (const std::exception&) {
    return -ENODEV;
  }
}

int Radalt_Read(int handle, unsigned int space, unsigned int address, unsigned int* value) {
  UnitModel* unit = unit_of(handle);
  if (unit == nullptr) {
    return EBADF;
  }
  if (unit->watched()) {
    return drivers::watched_read(*unit, space, address, value);
  }
  *value = unit->board().read(space, address);
  return 0;
}

int Radalt_Write(int handle, unsigned int space, unsigned int address, unsigned int value) {
  UnitModel* unit = unit_of(handle);
  if (unit == nullptr) {
    return EBADF;
  }
  if (unit->watched()) {
    return drivers::watched_write(*unit, space, address, value);
  }
  return unit->board().write(space, address, value) ? 0 : ENOSPC;
}

int Radalt_LockGet(int handle) {
  UnitModel* unit = unit_of(handle);
  if (unit == nullptr) {
    return EBADF;
  }
  return unit->watched() ? drivers::watched_lock_get(*unit) : unit->board().lock().take();
}

int Radalt_LockPut(int handle) {
  UnitModel* unit = unit_of(handle);
  if (unit == nullptr) {
    return EBADF;
  }
  return unit->watched() ? drivers::watched_lock_put(*unit) : unit->board().lock().give();
}
