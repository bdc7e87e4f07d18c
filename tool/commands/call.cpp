#include <algorithm>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/host_output.h"
#include "tool/nearest.h"
#include "tool/numbers.h"
#include "tool/operations.h"
#include "tool/output.h"

namespace tool {
namespace {

using control::client::ApiError;
using nlohmann::json;
using nlohmann::ordered_json;

/// Calls the operation and shows the host's output meanwhile.
ordered_json call(Connection& connection, const std::string& operation, const json& body) {
  HostOutput output(connection.socket());
  connection.client().wait_with([&output](int descriptor) { output.wait_readable(descriptor); });
  const std::string target = "/v1/operations/" + control::client::escaped(operation);
  try {
    ordered_json answer = connection.send("POST", target, body);
    output.show_rest();
    connection.client().wait_with({});
    return answer;
  } catch (...) {
    output.show_rest();
    connection.client().wait_with({});
    throw;
  }
}

/// The error for people: an unknown name with the nearest ones, a time limit with its length.
[[noreturn]] void refuse(Connection& connection, const std::string& operation, const ApiError& error,
                         const std::optional<std::string>& timeout) {
  constexpr int BAD_REQUEST = 400;
  constexpr int UNKNOWN = 404;
  constexpr int TIMED_OUT = 504;
  if (error.status == BAD_REQUEST || error.status == UNKNOWN) {
    const std::vector<std::string> names = connection.operation_names();
    if (std::find(names.begin(), names.end(), operation) == names.end()) {
      const std::string meant = did_you_mean(operation, names);
      throw UsageError("unknown operation \"" + operation + "\"" +
                       (meant.empty() ? "; \"unit operations\" lists all" : meant));
    }
  }
  if (error.status == TIMED_OUT && timeout) {
    throw CommandError(STATUS_FAILED, operation + ": no answer for " + in_seconds(seconds("--timeout", *timeout)) +
                                          "; the call goes on");
  }
  throw error;
}

int run(const Arguments& arguments) {
  const std::string operation = arguments.text("OPERATION");
  json body = {{"args", json::array()}};
  for (const std::string& text : arguments.all("ARGUMENT")) {
    body["args"].push_back(typed_argument(text));
  }
  const std::optional<std::string> timeout = arguments.value("timeout");
  if (timeout) {
    body["timeout_ms"] = seconds("--timeout", *timeout).count();
  }
  Connection connection(arguments);
  ordered_json answer;
  try {
    answer = call(connection, operation, body);
  } catch (const ApiError& error) {
    refuse(connection, operation, error, timeout);
  }
  const std::string exception = exception_in(answer);
  if (!exception.empty()) {
    throw CommandError(STATUS_FAILED, operation + ": exception " + exception);
  }
  if (arguments.has("json")) {
    const ordered_json units = units_of(operation);
    if (!units.empty()) {
      answer["units"] = units;
    }
    print_json(answer);
  } else {
    print(answer_as_text(operation, answer));
  }
  return 0;
}

}  // namespace

Command call_command() {
  return {"call",
          "Hardware object",
          "Call an operation of the hardware object",
          {unit_option(), {"timeout", 0, "SECONDS", "give up after this time (default: no limit)"}, json_option()},
          {{"OPERATION", "operation; \"unit operations\" lists them", Count::ONE, Offer::OPERATIONS},
           {"ARGUMENT", "parsed as JSON if valid, else taken as text", Count::ANY}},
          run};
}

}  // namespace tool
