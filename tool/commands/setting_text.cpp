#include "tool/commands/setting_text.h"

#include "tool/tables.h"
#include "tool/text.h"

namespace tool {

using nlohmann::ordered_json;

namespace {

std::string dumped(const ordered_json& value) {
  return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::string reason_of(const ordered_json& setting) {
  return setting.contains("reason") ? " (" + setting["reason"].get<std::string>() + ")" : "";
}

}  // namespace

ordered_json value_of(const ordered_json& setting) {
  ordered_json row = {{"name", setting.at("name")}, {"value", setting.at("value")}};
  for (const char* key : {"unit", "reason"}) {
    if (setting.contains(key)) {
      row[key] = setting[key];
    }
  }
  return row;
}

std::string value_as_lines(const ordered_json& setting) {
  const ordered_json& value = setting.at("value");
  const std::string text = value.is_string() ? value.get<std::string>() : dumped(value) + reason_of(setting);
  const std::string lines = printable_lines(text);
  return lines.empty() || lines.back() != '\n' ? lines + '\n' : lines;
}

std::string value_as_cell(const ordered_json& setting) {
  const ordered_json& value = setting.at("value");
  // Texts are quoted, so that "38.5\n" and null can be told from other values.
  const bool quoted = setting.value("type", "") == "text";
  return value.is_string() && !quoted ? value.get<std::string>() : dumped(value) + reason_of(setting);
}

std::string values_as_table(const ordered_json& settings) {
  Table table({"NAME", "VALUE", "UNIT"});
  for (const ordered_json& setting : settings) {
    table.add({setting.at("name"), value_as_cell(setting), setting.value("unit", "")});
  }
  return table.text();
}

std::string range_of(const ordered_json& setting) {
  const std::string type = setting.value("type", "");
  std::string range;
  if (setting.contains("minimum") && setting["minimum"].is_number()) {
    range = setting["minimum"].dump() + ".." + setting.at("maximum").dump();
  } else if (type == "flag") {
    range = "true, false";
  } else if (type == "text") {
    range = "text or null";
  }
  for (const ordered_json& choice : setting.value("choices", ordered_json::array())) {
    range += (range.empty() ? "" : ", ") + choice.get<std::string>();
  }
  return range;
}

}  // namespace tool
