#pragma once

#include "simulator/model/unit_model.h"

namespace simulator::services {

/// Runs one service in this process until SIGTERM or SIGINT: registers it according to its behaviour in the model, now
/// and after every change, and unbinds its name at the end. Whenever the naming service reflects the model, writes the
/// count of behaviour changes applied to `report` as one std::uint32_t (-1: no reports); exits if the reader is gone.
/// Called once, by the only thread of the process. Throws CORBA::Exception if the naming service at
/// 127.0.0.1:`naming_port` cannot be reached.
void run_service(model::UnitModel& model, model::Service service, unsigned naming_port, int report);

}  // namespace simulator::services
