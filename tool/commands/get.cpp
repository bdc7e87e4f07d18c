#include "tool/commands/setting_text.h"
#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/output.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

int run(const Arguments& arguments) {
  Connection connection(arguments);
  const std::vector<std::string>& names = arguments.all("NAME");
  const ordered_json settings = connection.rows(with_names("/v1/settings", "names", names), "settings");
  if (arguments.has("json")) {
    ordered_json rows = ordered_json::array();
    for (const ordered_json& setting : settings) {
      rows.push_back(value_of(setting));
    }
    print_json(names.size() == 1 ? rows.at(0) : rows);
  } else if (names.size() == 1) {
    print(value_as_lines(settings.at(0)));
  } else {
    print(values_as_table(settings));
  }
  return 0;
}

}  // namespace

Command get_command() {
  return {"get",
          "Values",
          "Print settings of a unit",
          {unit_option(), json_option()},
          {{"NAME", "setting (default: all)", Count::ANY, Offer::SETTINGS}},
          run};
}

}  // namespace tool
