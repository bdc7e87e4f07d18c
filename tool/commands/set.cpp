#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/operations.h"
#include "tool/output.h"

namespace tool {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

std::string path_of(const std::string& name) {
  return "/v1/settings/" + control::client::escaped(name);
}

/// A typed value for a setting of that type, by the service's rule: parsed as JSON if valid, else taken as text;
/// settings whose values are texts take numbers and lists as texts too.
json typed_value(const std::string& type, const std::string& text) {
  const json value = typed_argument(text);
  const bool wants_text = type == "text" || type == "choice" || type == "fault";
  return wants_text && !value.is_string() && !value.is_null() ? json(text) : value;
}

/// Several values are set together or not at all.
json set_together(Connection& connection, const std::vector<std::string>& names,
                  const std::vector<std::string>& texts) {
  const ordered_json settings = connection.rows(with_names("/v1/settings", "names", names), "settings");
  json values = json::object();
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (values.contains(names[i])) {
      throw UsageError(names[i] + ": given twice");
    }
    values[names[i]] = typed_value(settings.at(i).at("type"), texts[i]);
  }
  return connection.send("PATCH", "/v1/settings", {{"values", values}}).at("values");
}

int run(const Arguments& arguments) {
  std::vector<std::string> names = arguments.all("NAME");
  std::vector<std::string> texts = arguments.all("VALUE");
  const std::vector<std::string>& more = arguments.all("NAME VALUE");
  if (more.size() % 2 != 0) {
    throw UsageError(more.back() + ": VALUE is missing");
  }
  for (std::size_t i = 0; i < more.size(); i += 2) {
    names.push_back(more[i]);
    texts.push_back(more[i + 1]);
  }
  Connection connection(arguments);
  json values;
  if (names.size() > 1) {
    values = set_together(connection, names, texts);
  } else {
    values[names[0]] = connection.send("PUT", path_of(names[0]), {{"text", texts[0]}}).at("value");
  }
  if (arguments.has("json")) {
    ordered_json rows = ordered_json::array();
    for (const std::string& name : names) {
      rows.push_back({{"name", name}, {"value", values.at(name)}});
    }
    print_json(rows);
  }
  return 0;
}

}  // namespace

Command set_command() {
  return {"set",
          "Values",
          "Change settings of a running unit, all or none",
          {unit_option(), {"json", 0, "", "print the values set as JSON"}},
          {{"NAME", "setting", Count::ONE, Offer::SETTINGS},
           {"VALUE", "new value, parsed as JSON if valid, else taken as text"},
           {"NAME VALUE", "", Count::ANY, Offer::SETTINGS}},
          run};
}

}  // namespace tool
