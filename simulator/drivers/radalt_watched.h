#pragma once

#include "simulator/model/unit_model.h"

/// The board driver's operations on a watched unit: recorded, counted and subject to faults. They return what the
/// operations return. If the record cannot be written, the operation fails with EIO.
namespace simulator::drivers {

int watched_init(model::UnitModel& unit) noexcept;
int watched_read(model::UnitModel& unit, unsigned space, unsigned address, unsigned* value) noexcept;
int watched_write(model::UnitModel& unit, unsigned space, unsigned address, unsigned value) noexcept;
int watched_lock_get(model::UnitModel& unit) noexcept;
int watched_lock_put(model::UnitModel& unit) noexcept;

}  // namespace simulator::drivers
