#pragma once

#include <stdexcept>
#include <string>

namespace control::client {

/// The service rejected a request. what() is the reason, after the member or setting concerned.
struct ApiError : std::runtime_error {
  ApiError(int http_status, const std::string& reason, std::string refused, std::string wanted)
      : std::runtime_error(refused.empty() ? reason : refused + ": " + reason),
        status(http_status),
        where(std::move(refused)),
        expected(std::move(wanted)) {}

  int status;            ///< HTTP status
  std::string where;     ///< empty if nothing in particular
  std::string expected;  ///< empty if not said
};

/// No service answers, the connection broke, or the answer is not one of the interface.
struct ConnectionError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// No running unit of that name, or several to choose from. what() is for people.
struct NoSuchUnit : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The unit could not be started. what() is for people.
struct LaunchError : std::runtime_error {
  LaunchError(int exit_status, const std::string& reason) : std::runtime_error(reason), status(exit_status) {}

  int status;  ///< exit status that fits: 1, 2 (bad usage or unit file) or 3 (no private root on this machine)
};

}  // namespace control::client
