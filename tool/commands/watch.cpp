#include "tool/commands/setting_text.h"
#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/output.h"

namespace tool {
namespace {

using control::client::Event;
using control::client::EventStream;
using nlohmann::ordered_json;

void show(const ordered_json& setting, bool as_json) {
  if (as_json) {
    print_json(value_of(setting));
  } else {
    const std::string unit = setting.value("unit", "");
    print(setting.at("name").get<std::string>() + " " + value_as_cell(setting) + (unit.empty() ? "" : " " + unit) +
          '\n');
  }
  flush_output();
}

int run(const Arguments& arguments) {
  Connection connection(arguments);
  const std::vector<std::string>& names = arguments.all("NAME");
  const bool as_json = arguments.has("json");
  // Listen before the first look, so that no change is missed.
  EventStream stream(connection.socket(), with_names("/v1/stream", "settings", names) + "&events=settings");
  const ordered_json settings = connection.rows(with_names("/v1/settings", "names", names), "settings");
  std::map<std::string, ordered_json> known;
  for (const ordered_json& setting : settings) {
    known[setting.at("name")] = setting;
    show(setting, as_json);
  }
  for (;;) {
    const std::optional<Event> event = stream.next(std::chrono::hours(1));
    if (!event || event->type != "settings") {
      continue;
    }
    for (const auto& [name, value] : event->data.at("values").items()) {
      ordered_json& setting = known[name];
      if (setting.is_object() && setting["value"] != ordered_json(value)) {
        setting["value"] = value;
        setting.erase("reason");
        show(setting, as_json);
      }
    }
  }
}

}  // namespace

Command watch_command() {
  return {"watch",
          "Values",
          "Print settings whenever they change, until Ctrl-C",
          {unit_option(), {"json", 0, "", "print one JSON document per line"}},
          {{"NAME", "setting", Count::SOME, Offer::SETTINGS}},
          run};
}

}  // namespace tool
