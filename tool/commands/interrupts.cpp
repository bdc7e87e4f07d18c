#include "tool/commands/interrupts.h"

#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/host_output.h"
#include "tool/numbers.h"
#include "tool/output.h"

namespace tool {

using nlohmann::json;
using nlohmann::ordered_json;

std::vector<Option> interrupt_options() {
  return {unit_option(),
          {"wait", 'w', "", "wait until the library has handled it"},
          {"timeout", 0, "SECONDS", "with --wait: give up after this time (default: no limit)"},
          json_option()};
}

void raise_interrupt(const Arguments& arguments, std::int64_t value) {
  json body = {{"value", value}};
  if (arguments.has("wait")) {
    body["wait"] = true;
  }
  if (const auto timeout = arguments.value("timeout")) {
    if (!arguments.has("wait")) {
      throw UsageError("--timeout: needs --wait");
    }
    body["timeout_ms"] = seconds("--timeout", *timeout).count();
  }
  Connection connection(arguments);
  std::optional<HostOutput> output;
  if (arguments.has("wait")) {
    output.emplace(connection.socket());
    connection.client().wait_with([&output](int descriptor) { output->wait_readable(descriptor); });
  }
  const ordered_json answer = connection.send("POST", "/v1/interrupts", body);
  if (output) {
    output->show_rest();
  }
  if (arguments.has("json")) {
    print_json(answer);
  }
  if (arguments.has("wait") && answer.at("handled") != true) {
    throw CommandError(STATUS_FAILED, "interrupt " + answer.at("number").dump() + ": not handled within " +
                                          in_seconds(seconds("--timeout", arguments.text("timeout"))));
  }
}

}  // namespace tool
