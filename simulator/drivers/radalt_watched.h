#pragma once

#include "simulator/model/unit_model.h"

/// The board driver's operations on a unit whose crossings are watched: recorded, counted and open to faults.
/// Results as those of the operations themselves. A record that cannot be written fails the operation with EIO.
namespace simulator::drivers {

int watched_init(model::UnitModel& unit) noexcept;
int watched_read(model::UnitModel& unit, unsigned space, unsigned address, unsigned* value) noexcept;
int watched_write(model::UnitModel& unit, unsigned space, unsigned address, unsigned value) noexcept;
int watched_lock_get(model::UnitModel& unit) noexcept;
int watched_lock_put(model::UnitModel& unit) noexcept;

}  // namespace simulator::drivers
