#pragma once

#include <cstdint>

#include "simulator/model/faults.h"

namespace simulator::model {

class UnitModel;

/// The faults of a unit: arms them and reports their counts. Any thread of any process.
class UnitFaults {
public:
  explicit UnitFaults(UnitModel& unit) : unit_(unit) {}

  /// Arms the fault at the point, replacing any other, and restarts its call count. Kind NONE disarms. STUCK holds the
  /// values that the point would deliver now; a fault at a file changes it, and disarming restores it. Throws
  /// std::invalid_argument, listing what is admitted, if the point does not admit the fault, and std::system_error if a
  /// file cannot be changed.
  void arm(Point point, const Fault& fault);
  /// Disarms every point.
  void disarm_all();
  Fault armed_at(Point point) const;

  /// Number of calls of the point while the unit was watched, and of calls hit by a fault; 0 for files.
  std::uint64_t calls(Point point) const noexcept;
  std::uint64_t hits(Point point) const noexcept;
  void forget_calls() noexcept;

private:
  void hold(Point point);

  UnitModel& unit_;
};

}  // namespace simulator::model
