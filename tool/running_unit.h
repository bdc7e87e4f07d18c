#pragma once

#include <filesystem>
#include <string>

#include <CLI/CLI.hpp>

#include "simulator/model/unit_model.h"

namespace tool {

/// A unit that runs already, started by another command.
class RunningUnit {
public:
  /// Adds the option that chooses the unit.
  void add_option(CLI::App& command);

  /// Its state folder: the chosen one, else that of the only unit that runs. Throws CommandError where there is none,
  /// or no single one.
  std::filesystem::path state() const;
  simulator::model::UnitModel model() const;
  std::filesystem::path socket() const { return state() / "run/unit/host.sock"; }

private:
  std::string chosen_;
};

}  // namespace tool
