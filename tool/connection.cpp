#include "tool/connection.h"

#include <algorithm>

#include "tool/errors.h"
#include "tool/nearest.h"

namespace tool {

using control::client::ApiError;
using control::client::FoundUnit;
using nlohmann::ordered_json;

Connection::Connection(const Arguments& arguments) : Connection(control::client::find_unit(arguments.text("unit"))) {}

Connection::Connection(const FoundUnit& unit) : unit_(unit), client_(unit.socket()) {}

std::vector<std::string> Connection::setting_names() {
  std::vector<std::string> names;
  for (const ordered_json& setting : get("/v1/settings").at("settings")) {
    names.push_back(setting.at("name"));
  }
  return names;
}

std::vector<std::string> Connection::operation_names() {
  std::vector<std::string> names;
  for (const ordered_json& operation : get("/v1/operations").at("operations")) {
    names.push_back(operation.at("call"));
  }
  return names;
}

void refuse_unknown(Connection& connection, const ApiError& error, Names names, const std::string& name) {
  constexpr int BAD_REQUEST = 400;
  constexpr int UNKNOWN = 404;
  if ((error.status != BAD_REQUEST && error.status != UNKNOWN) || name.rfind("board.register.", 0) == 0) {
    return;
  }
  const std::vector<std::string> known = (connection.*names)();
  if (std::find(known.begin(), known.end(), name) == known.end()) {
    throw UsageError(error.what() + did_you_mean(name, known));
  }
}

std::string with_names(const std::string& path, const std::string& parameter, const std::vector<std::string>& names) {
  std::string target = path;
  for (std::size_t i = 0; i < names.size(); ++i) {
    target += (i == 0 ? "?" + parameter + "=" : ",") + control::client::escaped(names[i]);
  }
  return target;
}

}  // namespace tool
