#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace simulator::agent {

/// Codes of refused requests, those of HTTP.
enum RefusalCode {
  BAD_REQUEST = 400,  ///< a wrong value or argument
  UNKNOWN = 404,      ///< no such thing
  CONFLICT = 409,     ///< not possible in the unit's present state
  FAILED = 500,       ///< an error inside the unit
  TIMED_OUT = 504     ///< the request's time limit has passed
};

/// A request that is refused or failed, with nothing changed. what() is the reason.
class Refusal : public std::runtime_error {
public:
  Refusal(RefusalCode refusal_code, const std::string& reason, std::optional<std::string> refused = {},
          std::optional<std::string> wanted = {})
      : std::runtime_error(reason), code(refusal_code), where(std::move(refused)), expected(std::move(wanted)) {}

  RefusalCode code;
  std::optional<std::string> where;     ///< the setting, operation or argument
  std::optional<std::string> expected;  ///< what would have been accepted
};

}  // namespace simulator::agent
