#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sstream>

#include "tool/commands/setting_text.h"
#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/output.h"
#include "tool/tables.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

/// Puts the value where the unit file has it: each dot of the name is one level of nesting.
void add_nested(ordered_json& file, const std::string& name, const ordered_json& value) {
  ordered_json* place = &file;
  std::istringstream parts(name);
  for (std::string part; std::getline(parts, part, '.');) {
    place = &(*place)[part];
  }
  *place = value;
}

ordered_json unit_file(const ordered_json& settings) {
  ordered_json file = ordered_json::object();
  for (const ordered_json& setting : settings) {
    if (setting.contains("reason")) {
      complain("settings: " + setting.at("name").get<std::string>() +
               " is left out: " + setting["reason"].get<std::string>());
    } else {
      add_nested(file, setting.at("name"), setting.at("value"));
    }
  }
  return file;
}

void save(const std::string& path, const ordered_json& settings) {
  const std::string text = unit_file(settings).dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
  std::FILE* const file = std::fopen(path.c_str(), "we");
  const bool written =
      file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
  const int error = errno;
  if (file != nullptr) {
    std::fclose(file);
  }
  if (!written) {
    throw CommandError(STATUS_FAILED, path + ": " + std::strerror(error));
  }
}

int run(const Arguments& arguments) {
  Connection connection(arguments);
  const ordered_json settings = connection.rows("/v1/settings", "settings");
  if (const auto path = arguments.value("save")) {
    save(*path, settings);
    return 0;
  }
  if (arguments.has("json")) {
    print_json(settings);
    return 0;
  }
  Table table({"NAME", "VALUE", "UNIT", "RANGE", "DESCRIPTION"});
  for (const ordered_json& setting : settings) {
    table.add({setting.at("name"), value_as_cell(setting), setting.value("unit", ""), range_of(setting),
               setting.value("doc", "")});
  }
  print(table.text());
  return 0;
}

}  // namespace

Command settings_command() {
  return {"settings",
          "Values",
          "List the settings of a unit: values, units, ranges",
          {unit_option(),
           {"save", 0, "FILE", "write a unit file with the present values instead", false, Offer::FILES},
           json_option()},
          {},
          run};
}

}  // namespace tool
