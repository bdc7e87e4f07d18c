#pragma once

#include <filesystem>
#include <string>

#include "simulator/model/unit_model.h"

namespace tool {

/// A running unit, started by another command.
struct RunningUnit {
  /// Its state folder. Throws CommandError if no unit is running there or, without a choice, if not exactly one is
  /// running.
  std::filesystem::path state() const;
  simulator::model::UnitModel model() const;
  std::filesystem::path socket() const { return state() / "run/unit/host.sock"; }

  std::string chosen;  ///< its state folder; empty: the only running unit
};

}  // namespace tool
