#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/started_unit.h"

namespace tool {
namespace {

using control::client::FoundUnit;

std::vector<FoundUnit> chosen(const Arguments& arguments) {
  if (arguments.has("all")) {
    if (arguments.has("NAME") || arguments.has("unit")) {
      throw UsageError("--all: cannot be used with a name");
    }
    return control::client::list_units();
  }
  std::vector<std::string> names = arguments.all("NAME");
  if (names.empty()) {
    names.push_back(arguments.text("unit"));
  } else if (arguments.has("unit")) {
    throw UsageError("--unit: cannot be used with a name");
  }
  std::vector<FoundUnit> units;
  for (const std::string& name : names) {
    units.push_back(chosen_unit(name));
  }
  return units;
}

int run(const Arguments& arguments) {
  for (const FoundUnit& unit : chosen(arguments)) {
    stop_unit(unit);
  }
  return 0;
}

}  // namespace

Command stop_command() {
  return {"stop",
          "Units",
          "Stop units and everything that runs on them",
          {unit_option(), {"all", 'a', "", "stop all running units"}},
          {{"NAME", "unit (default: the only running one)", Count::ANY, Offer::UNITS}},
          run};
}

}  // namespace tool
