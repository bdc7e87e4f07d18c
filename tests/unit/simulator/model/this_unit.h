#pragma once

#include "simulator/model/unit_model.h"

#include "tests/doubles/temporary_folder.h"

namespace simulator_test {

/// The unit that the test process belongs to: made by the first call, before the simulated closed libraries use it, and
/// removed at exit.
class ThisUnit {
public:
  static ThisUnit& get() {
    static ThisUnit unit;
    return unit;
  }

  simulator::model::UnitModel& model() { return simulator::model::UnitModel::of_this_unit(); }
  std::string run_folder() const { return folder_ / "run/unit"; }
  std::string file(const std::string& name) const { return folder_ / ("run/unit/" + name); }

  /// Restores the initial values, disarms all faults, clears the events, and stops the call record and call counting.
  void reset() {
    model().faults().disarm_all();
    model().faults().forget_calls();
    model().record().stop();
    model().count_calls(false);
    std::filesystem::remove(file("events.jsonl"));
  }

private:
  ThisUnit() {
    simulator::model::UnitModel::create(run_folder() + "/model");
    ::setenv("UNIT_RUN", run_folder().c_str(), 1);
  }

  doubles::TemporaryFolder folder_;
};

}  // namespace simulator_test
