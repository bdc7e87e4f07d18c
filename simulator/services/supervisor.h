#pragma once

#include "simulator/model/unit_model.h"

namespace simulator::services {

/// Runs every service of the unit in a process of its own until SIGTERM or SIGINT, and ends them then.
/// A service that has been killed stays dead, its name left in the naming service, while its behaviour is to die in a
/// call; otherwise a service that has ended is started again. The model is told whenever all services stand as they
/// were set.
/// Called once, by the only thread of the process. Returns the exit status: 0, or 1 where a service could not run (it
/// has said why on standard error) or did not end in order.
int supervise(model::UnitModel& model);

}  // namespace simulator::services
