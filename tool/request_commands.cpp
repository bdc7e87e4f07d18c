#include <cstdint>
#include <cstdio>
#include <memory>

#include "commands.h"
#include "errors.h"
#include "host_client.h"
#include "running_unit.h"

namespace tool {
namespace {

using nlohmann::json;

struct RequestOptions {
  RunningUnit unit;
  std::string operation;
  std::vector<std::string> arguments;
  std::string value;
  bool json = false;
};

/// An argument as typed: JSON where it is some, else text.
json argument(const std::string& text) {
  json value = json::parse(text, nullptr, false);
  return value.is_discarded() ? json(text) : value;
}

std::string shown(const json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

void call(const RequestOptions& options) {
  HostClient host(options.unit.socket());
  json arguments = json::array();
  for (const std::string& text : options.arguments) {
    arguments.push_back(argument(text));
  }
  const json answer = host.call(options.operation, arguments);
  if (options.json) {
    std::printf("%s\n", answer.dump().c_str());
    return;
  }
  for (const auto& [key, value] : answer.items()) {
    std::printf("%s: %s\n", key.c_str(), shown(value).c_str());
  }
}

/// A number as typed, in decimal or with 0x in hexadecimal; all 32 bits may be given with or without sign.
std::int32_t interrupt_value(const std::string& text) {
  std::size_t used = 0;
  long long value = 0;
  try {
    value = std::stoll(text, &used, 0);
  } catch (const std::exception&) {
    used = 0;
  }
  if (used != text.size() || text.empty() || value < INT32_MIN || value > static_cast<long long>(UINT32_MAX)) {
    throw CommandError(STATUS_BAD_USAGE,
                       "interrupt: expected a number of 32 bits such as 256 or 0x100, got \"" + text + "\"");
  }
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

void interrupt(const RequestOptions& options) {
  const std::int32_t value = interrupt_value(options.value);
  options.unit.model().power_supply().raise_interrupt(value);
}

}  // namespace

void add_requests(CLI::App& app) {
  const auto options = std::make_shared<RequestOptions>();

  CLI::App* call_command = app.add_subcommand("call", "Calls an operation of the hardware object of a running unit.");
  options->unit.add_option(*call_command);
  call_command->add_option("operation", options->operation, "its name; \"operations\" lists them")->required();
  call_command->add_option("arguments", options->arguments, "its arguments: JSON where they are some, else text");
  call_command->add_flag("--json", options->json, "print JSON");
  call_command->callback([options] { call(*options); });

  CLI::App* interrupt_command =
      app.add_subcommand("interrupt", "Raises a switch interrupt of the power-supply controller of a running unit.");
  options->unit.add_option(*interrupt_command);
  interrupt_command
      ->add_option("value", options->value,
                   "communication status, decimal or 0x…: 0x100 power switch, 0x40 cover closed")
      ->required();
  interrupt_command->callback([options] { interrupt(*options); });
}

}  // namespace tool
