#pragma once

#include "simulator/model/unit_model.h"

#include "tests/doubles/temporary_folder.h"

namespace simulator_test {

/// The unit that the test process belongs to: made by the first call, before anything behind the closed interfaces asks
/// for it, and removed at exit.
class ThisUnit {
public:
  static ThisUnit& get() {
    static ThisUnit unit;
    return unit;
  }

  simulator::model::UnitModel& model() { return simulator::model::UnitModel::of_this_unit(); }
  std::string run_folder() const { return folder_ / "run/unit"; }
  std::string file(const std::string& name) const { return folder_ / ("run/unit/" + name); }

  /// Back to the initial values, no faults, no record.
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
