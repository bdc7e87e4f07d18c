#pragma once

#include <string>

#include "simulator/model/unit_model.h"
#include "simulator/services/ending.h"

namespace simulator::services {

/// The behaviour of one service as its callers meet it. Any thread.
class Conduct {
public:
  Conduct(model::UnitModel& model, model::Service service, Ending& ending)
      : model_(model), service_(service), ending_(ending) {}

  /// Every operation calls this first: counts and records the call with its arguments (JSON text), then plays what is
  /// set for the service and for the operation. A service that dies ends this process here; one that throws, and an
  /// operation that fails, throw CORBA::INTERNAL (minor code: the fault's value); a slow one waits. An operation that
  /// never answers waits until the process ends. Returns the fault that is left for the operation itself: GARBAGE, or
  /// NONE.
  model::Fault enter(model::Point point, const std::string& args);

  /// An operation that waits calls this now and then: plays a death or an exception that has been set meanwhile, and
  /// throws CORBA::TRANSIENT where the process is to end.
  void keep_waiting(std::chrono::milliseconds time);

private:
  void play_behaviour();
  /// Waits for `time` and throws CORBA::TRANSIENT where the process is to end meanwhile.
  void pause(std::chrono::milliseconds time);

  model::UnitModel& model_;
  model::Service service_;
  Ending& ending_;
};

}  // namespace simulator::services
