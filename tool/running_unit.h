#pragma once

#include <filesystem>
#include <string>

#include "simulator/model/unit_model.h"

namespace tool {

/// A unit that runs already, started by another command.
struct RunningUnit {
  /// Its state folder. Throws CommandError where no unit runs there, or not exactly one runs.
  std::filesystem::path state() const;
  simulator::model::UnitModel model() const;
  std::filesystem::path socket() const { return state() / "run/unit/host.sock"; }

  std::string chosen;  ///< its state folder; empty: the only unit that runs
};

}  // namespace tool
