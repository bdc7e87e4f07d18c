#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "control/client/client.h"
#include "tool/arguments.h"

namespace tool {

/// The running unit of that name; "": the only one. Throws UsageError and control::client::NoSuchUnit.
control::client::FoundUnit chosen_unit(const std::string& name);

/// The rows in the answer to a GET request: the member of that name.
nlohmann::ordered_json rows_at(control::client::Client& client, const std::string& target, const std::string& member);

/// The control service of one unit. One thread.
class Connection {
public:
  /// The unit chosen with --unit. Throws as chosen_unit().
  explicit Connection(const Arguments& arguments);
  explicit Connection(const control::client::FoundUnit& unit);

  const control::client::FoundUnit& unit() const { return unit_; }
  std::filesystem::path socket() const { return unit_.socket(); }
  control::client::Client& client() { return client_; }

  /// Requests; throw what the client throws.
  nlohmann::ordered_json get(const std::string& target) { return client_.get(target); }
  nlohmann::ordered_json rows(const std::string& target, const std::string& member) {
    return rows_at(client_, target, member);
  }
  nlohmann::ordered_json send(const std::string& method, const std::string& target, const nlohmann::json& body) {
    return client_.send(method, target, body);
  }

  /// The names that the unit knows.
  std::vector<std::string> setting_names();
  std::vector<std::string> operation_names();

private:
  control::client::FoundUnit unit_;
  control::client::Client client_;
};

/// "/v1/settings?names=a,b": the path with the names as a query parameter; the path alone without names.
std::string with_names(const std::string& path, const std::string& parameter, const std::vector<std::string>& names);

}  // namespace tool
