#include "tool/arguments.h"
#include "tool/commands/table.h"
#include "tool/commands/unit_text.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/output.h"
#include "tool/text.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t NAME_COLUMNS = 12;

std::string in_one_line(const ordered_json& value) {
  if (value.is_string()) {
    return value.get<std::string>();
  }
  if (value.is_boolean()) {
    return value.get<bool>() ? "yes" : "no";
  }
  if (!value.is_object()) {
    return value.is_null() ? "-" : value.dump();
  }
  std::string text;
  for (const auto& [name, member] : value.items()) {
    text += (text.empty() ? "" : ", ") + name + " " + in_one_line(member);
  }
  return text;
}

/// The host: its end in words, or its state and process.
std::string host_line(const ordered_json& unit) {
  const ordered_json& host = unit.at("host");
  std::string text = host_in_words(unit);
  if (host.value("program", ordered_json()).is_string()) {
    text += ", " + host["program"].get<std::string>();
  }
  return host.value("pid", ordered_json()).is_null() ? text : text + ", process " + host["pid"].dump() + " inside";
}

int run(const Arguments& arguments) {
  const ordered_json unit = described(chosen_unit(arguments.text("unit")));
  if (unit.contains("reason")) {
    throw CommandError(STATUS_FAILED, unit.at("name").get<std::string>() + ": " + unit["reason"].get<std::string>());
  }
  if (arguments.has("json")) {
    print_json(unit);
    return 0;
  }
  for (const auto& [name, value] : unit.items()) {
    print(padded(name, NAME_COLUMNS) + printable(name == "host" ? host_line(unit) : in_one_line(value)) + '\n');
  }
  return 0;
}

}  // namespace

Command status_command() {
  return {"status", "Units", "Print what is known about a unit", {unit_option(), json_option()}, {}, run};
}

}  // namespace tool
