#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simulator/model/points.h"

namespace fault_pairs {

/// What comes of one call, as its caller sees it.
struct Outcome {
  bool failed = false;
  std::vector<std::string> delivered;  ///< in the order of arrival

  bool operator==(const Outcome& other) const { return failed == other.failed && delivered == other.delivered; }
};

/// A call that is running. Its end cleans up after it.
class RunningCall {
public:
  virtual ~RunningCall() = default;
  virtual bool has_ended() = 0;
};

/// Crosses one point from the side of the unit's programs.
class Probe {
public:
  virtual ~Probe() = default;

  /// Sets the value that a call delivers without a fault; a call that delivers none ignores it.
  virtual void set_value(int) {}
  /// How a call delivers the value.
  virtual std::string text_of(int value) const { return std::to_string(value); }
  /// Makes one call and waits for all that comes of it while a fault of that kind hits; NONE: without a fault.
  virtual Outcome call(simulator::model::FaultKind kind) = 0;
  /// Starts a call; null if calls at this point always return.
  virtual std::unique_ptr<RunningCall> start() { return nullptr; }
};

class PairsUnit;

/// The probe of the point; null if there is none for it.
std::unique_ptr<Probe> make_probe(PairsUnit& unit, simulator::model::Point point);

/// The probes by what is crossed; null for other points.
std::unique_ptr<Probe> make_board_probe(PairsUnit& unit, simulator::model::Point point);
std::unique_ptr<Probe> make_power_supply_probe(PairsUnit& unit, simulator::model::Point point);
std::unique_ptr<Probe> make_framework_probe(PairsUnit& unit, simulator::model::Point point);
std::unique_ptr<Probe> make_service_probe(PairsUnit& unit, simulator::model::Point point);
std::unique_ptr<Probe> make_command_probe(PairsUnit& unit, simulator::model::Point point);
std::unique_ptr<Probe> make_file_probe(PairsUnit& unit, simulator::model::Point point);

}  // namespace fault_pairs
