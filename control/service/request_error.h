#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace control::service {

/// A request that cannot be served; becomes an answer with this status and the error document. what() is the reason.
class RequestError : public std::runtime_error {
public:
  RequestError(int http_status, const std::string& reason, std::optional<std::string> refused = {},
               std::optional<std::string> wanted = {})
      : std::runtime_error(reason), status(http_status), where(std::move(refused)), expected(std::move(wanted)) {}

  int status;                           ///< HTTP status, 400 or higher
  std::optional<std::string> where;     ///< member, parameter, header or setting concerned
  std::optional<std::string> expected;  ///< what would have been accepted
};

}  // namespace control::service
