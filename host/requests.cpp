#include "host/requests.h"

#include <cxxabi.h>

#include <algorithm>
#include <array>
#include <exception>

#include "host/exception_name.h"
#include "host/operation.h"

namespace host {
namespace {

using nlohmann::json;

constexpr int LONGEST_WAIT_MS = 60'000;

std::array<const std::vector<Operation>*, 4> all_operations() {
  return {&list_operations(), &power_operations(), &setting_operations(), &board_operations()};
}

json describe_operations() {
  json names = json::array();
  for (const std::vector<Operation>* group : all_operations()) {
    for (const Operation& operation : *group) {
      names.push_back({{"call", operation.name}, {"args", operation.arguments}});
    }
  }
  return {{"operations", names}};
}

/// The exception being handled, in the form used in answers.
json describe_exception() {
  json description = {{"type", current_exception_name()}};
  try {
    throw;
  } catch (const std::exception& error) {
    description["what"] = error.what();
  } catch (...) {
    description["what"] = nullptr;
  }
  return {{"exception", description}};
}

/// A request in its parts.
struct Request {
  json id;
  std::string call;
  json arguments = json::array();
};

Request read_request(const std::string& line) {
  Request request;
  const json whole = json::parse(line, nullptr, false);
  if (whole.is_discarded() || !whole.is_object()) {
    throw RequestError(
        "request: expected one JSON object on one line, such as {\"id\":1,\"call\":\"GetBW\",\"args\":[]}");
  }
  for (const auto& [key, value] : whole.items()) {
    if (key == "id") {
      request.id = value;
    } else if (key == "call" && value.is_string()) {
      request.call = value.get<std::string>();
    } else if (key == "args" && value.is_array()) {
      request.arguments = value;
    } else {
      throw RequestError("request: key \"" + key + "\": expected \"id\", \"call\" (text) or \"args\" (array)");
    }
  }
  if (request.call.empty()) {
    throw RequestError("request: expected the key \"call\" with the name of an operation");
  }
  return request;
}

json call_operation(const Operation& operation, const Arguments& arguments, bool preset) {
  if (Hardware == nullptr) {
    throw RequestError(std::string(operation.name) + ": no hardware object");
  }
  if (preset) {
    throw RequestError(std::string(operation.name) + ": the hardware object is the host's dummy");
  }
  try {
    return operation.call(*Hardware, arguments);
  } catch (const RequestError&) {
    throw;
  } catch (abi::__forced_unwind&) {
    throw;
  } catch (...) {
    return describe_exception();
  }
}

}  // namespace

const Operation* find_operation(const std::string& name) {
  for (const std::vector<Operation>* group : all_operations()) {
    for (const Operation& operation : *group) {
      if (name == operation.name) {
        return &operation;
      }
    }
  }
  return nullptr;
}

Answer Requests::serve(const std::string& line) {
  json id;
  json answer;
  bool leave = false;
  try {
    const Request request = read_request(line);
    id = request.id;
    const Arguments arguments(request.call, request.arguments);
    if (request.call == "operations") {
      answer = describe_operations();
    } else if (request.call == "hardware") {
      answer = {{"result", Hardware == nullptr ? "none" : preset_ ? "preset" : "set"}};
    } else if (request.call == "external_voltage") {
      arguments.at_most(1);
      const int wait_ms = arguments.count() > 0 ? arguments.number(0, "longest wait in ms") : 0;
      answer = {{"result", external_voltage_.value(std::chrono::milliseconds(std::min(wait_ms, LONGEST_WAIT_MS)))}};
    } else if (request.call == "leave") {
      leave = true;
      answer = json::object();
    } else if (const Operation* operation = find_operation(request.call)) {
      answer = call_operation(*operation, arguments, preset_);
    } else {
      throw RequestError("request: unknown operation \"" + request.call + "\"; \"operations\" lists them");
    }
  } catch (const RequestError& error) {
    answer = {{"error", error.what()}};
  } catch (const std::exception& error) {
    answer = {{"error", "host: " + std::string(error.what())}};
  }
  answer["id"] = id;
  // The unit's texts may contain any bytes; invalid UTF-8 becomes replacement characters.
  return {answer.dump(-1, ' ', false, json::error_handler_t::replace), leave};
}

}  // namespace host
