#pragma once

#include "simulator/model/unit_model.h"

namespace contract {

/// The simulated unit that this process belongs to: made by the first call, removed at exit.
simulator::model::UnitModel& simulated_unit();

}  // namespace contract
