#pragma once

#include <string>

#include "simulator/model/unit_model.h"
#include "simulator/services/ending.h"

namespace simulator::services {

/// The behaviour of one service towards its callers. Any thread.
class Conduct {
public:
  Conduct(model::UnitModel& model, model::Service service, Ending& ending)
      : model_(model), service_(service), ending_(ending) {}

  /// Called first by every operation: counts and records the call with its arguments (JSON text), then applies the
  /// behaviour of the service and the fault of the operation. A service that dies ends this process here; one that
  /// throws, and an operation that fails, throw CORBA::INTERNAL (minor code: the fault's value); a slow one waits. An
  /// operation that never answers waits until the process ends. Returns the fault left to the operation: GARBAGE or
  /// NONE.
  model::Fault enter(model::Point point, const std::string& args);

  /// Called repeatedly by a waiting operation: applies a death or exception set meanwhile, and throws CORBA::TRANSIENT
  /// if the process is ending.
  void keep_waiting(std::chrono::milliseconds time);

private:
  void play_behaviour();
  /// Waits for `time`; throws CORBA::TRANSIENT if the process is ending.
  void pause(std::chrono::milliseconds time);

  model::UnitModel& model_;
  model::Service service_;
  Ending& ending_;
};

}  // namespace simulator::services
