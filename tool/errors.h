#pragma once

#include <stdexcept>
#include <string>

namespace tool {

/// Exit statuses of the command.
enum Status {
  STATUS_FINE = 0,
  STATUS_FAILED = 1,       ///< load failure, driver error or other run-time failure
  STATUS_BAD_USAGE = 2,    ///< bad arguments or a bad unit file
  STATUS_NO_UNIT_ROOT = 3  ///< this machine cannot create a private root
};

/// Ends the command with a message on standard error and this status.
class CommandError : public std::runtime_error {
public:
  CommandError(int exit_status, const std::string& what) : std::runtime_error(what), status(exit_status) {}

  int status;
};

/// Ends the command with this status and no message: the reason is already known.
struct CommandEnd {
  int status;
  bool interrupted = false;  ///< this command received a signal
};

}  // namespace tool
