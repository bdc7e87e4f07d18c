#include <cstdint>
#include <cstdio>
#include <memory>

#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/host_client.h"
#include "tool/running_unit.h"

namespace tool {
namespace {

using nlohmann::json;

/// A typed argument, parsed as JSON if valid, else taken as text.
json argument(const std::string& text) {
  json value = json::parse(text, nullptr, false);
  return value.is_discarded() ? json(text) : value;
}

std::string shown(const json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

/// A typed 32-bit integer, decimal or hexadecimal (0x), signed or unsigned.
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
                       "interrupt: expected a 32-bit integer such as 256 or 0x100, got \"" + text + "\"");
  }
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

}  // namespace

void call_operation(const RequestOptions& options) {
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

void raise_interrupt(const RequestOptions& options) {
  const std::int32_t value = interrupt_value(options.value);
  options.unit.model().power_supply().raise_interrupt(value);
}

}  // namespace tool
