#pragma once

#include "simulator/model/unit_model.h"

namespace simulator::services {

/// Runs all services of the unit, one process per service, until SIGTERM or SIGINT, and then stops them.
/// While its behaviour is to die in a call, a killed service stays dead and its name stays bound; otherwise an exited
/// service is restarted. The model is updated whenever all behaviours have been applied.
/// Called once, by the only thread of the process. Returns the exit status: 0, or 1 if a service could not run (the
/// reason is on standard error) or did not exit cleanly.
int supervise(model::UnitModel& model);

}  // namespace simulator::services
