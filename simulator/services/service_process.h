#pragma once

#include "simulator/model/unit_model.h"

namespace simulator::services {

/// Runs one service in this process until SIGTERM or SIGINT: registers it as its behaviour in the model says, now and
/// after every change, and takes its name out of the naming service at the end. Each time the naming service shows what
/// the model says, the count of behaviour changes it goes by is written to `report` as one std::uint32_t; a reader
/// that has gone ends the service. -1: no reports.
/// Called once, by the only thread of the process. Returns at the end; throws CORBA::Exception where the naming service
/// at 127.0.0.1:`naming_port` cannot be reached.
void run_service(model::UnitModel& model, model::Service service, unsigned naming_port, int report);

}  // namespace simulator::services
