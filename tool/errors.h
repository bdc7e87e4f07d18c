#pragma once

#include <stdexcept>
#include <string>

namespace tool {

/// Exit statuses of the program; those of commands run on a unit are passed on (126, 127, 128 + signal included).
enum Status {
  STATUS_FINE = 0,
  STATUS_FAILED = 1,        ///< run-time failure
  STATUS_BAD_USAGE = 2,     ///< bad arguments, unknown name, value out of range or bad unit file
  STATUS_NO_UNIT_ROOT = 3,  ///< this machine cannot create a private root
  STATUS_SIGNAL = 128       ///< plus the signal's number
};

/// Ends the program with a message on standard error and this status.
class CommandError : public std::runtime_error {
public:
  CommandError(int exit_status, const std::string& what) : std::runtime_error(what), status(exit_status) {}

  int status;
};

/// Bad arguments: status 2.
class UsageError : public CommandError {
public:
  explicit UsageError(const std::string& what) : CommandError(STATUS_BAD_USAGE, what) {}
};

/// Ends the program with this status and no message: the reason has been reported, or a signal asked for the end.
struct CommandEnd {
  int status;
};

}  // namespace tool
