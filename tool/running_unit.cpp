#include "tool/running_unit.h"

#include <vector>

#include "simulator/sysroot/state_folder.h"
#include "tool/errors.h"

namespace tool {
namespace fs = std::filesystem;

fs::path RunningUnit::state() const {
  if (!chosen.empty()) {
    if (!simulator::sysroot::is_running(chosen)) {
      throw CommandError(STATUS_BAD_USAGE, chosen + ": no unit is running on this state folder");
    }
    return chosen;
  }
  const std::vector<fs::path> units = simulator::sysroot::running_units();
  if (units.empty()) {
    throw CommandError(STATUS_BAD_USAGE, "no unit is running; start one with \"unit run\"");
  }
  if (units.size() > 1) {
    std::string names;
    for (const fs::path& unit : units) {
      names += ' ' + unit.string();
    }
    throw CommandError(STATUS_BAD_USAGE, "several units are running; choose one with --unit-state:" + names);
  }
  return units.front();
}

simulator::model::UnitModel RunningUnit::model() const {
  return simulator::model::UnitModel::open((state() / "run/unit/model").string());
}

}  // namespace tool
