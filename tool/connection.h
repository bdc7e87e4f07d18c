#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "control/client/client.h"
#include "tool/arguments.h"

namespace tool {

/// The control service of one unit. One thread.
class Connection {
public:
  /// The unit chosen with --unit. Throws control::client::NoSuchUnit.
  explicit Connection(const Arguments& arguments);
  explicit Connection(const control::client::FoundUnit& unit);

  const control::client::FoundUnit& unit() const { return unit_; }
  std::filesystem::path socket() const { return unit_.socket(); }
  control::client::Client& client() { return client_; }

  /// Requests; throw what the client throws.
  nlohmann::ordered_json get(const std::string& target) { return client_.get(target); }
  nlohmann::ordered_json send(const std::string& method, const std::string& target, const nlohmann::json& body) {
    return client_.send(method, target, body);
  }

  /// The names that the unit knows, for completion and suggestions.
  std::vector<std::string> setting_names();
  std::vector<std::string> operation_names();

private:
  control::client::FoundUnit unit_;
  control::client::Client client_;
};

/// Kinds of names that a unit knows.
using Names = std::vector<std::string> (Connection::*)();

/// Throws UsageError with the error's text and the names nearest to `name`, if the unit does not know that name; else
/// returns.
void refuse_unknown(Connection& connection, const control::client::ApiError& error, Names names,
                    const std::string& name);

/// Runs a request about names of that kind. If the unit does not know one of them, the error suggests the nearest.
template <typename Request>
auto suggesting(Connection& connection, Names kind, const std::vector<std::string>& names, Request request) {
  try {
    return request();
  } catch (const control::client::ApiError& error) {
    for (const std::string& name : names) {
      refuse_unknown(connection, error, kind, name);
    }
    throw;
  }
}

/// "/v1/settings?names=a,b": the path with the names as a query parameter; the path alone without names.
std::string with_names(const std::string& path, const std::string& parameter, const std::vector<std::string>& names);

}  // namespace tool
