#pragma once

#include <stdexcept>
#include <string>

namespace tool {

/// Exit statuses of the command.
enum Status {
  STATUS_FINE = 0,
  STATUS_FAILED = 1,       ///< the library cannot be loaded, a driver refused, something failed at run time
  STATUS_BAD_USAGE = 2,    ///< bad arguments or a bad unit file
  STATUS_NO_UNIT_ROOT = 3  ///< this machine gives no private root
};

/// Ends the command with a message on standard error and this status.
class CommandError : public std::runtime_error {
public:
  CommandError(int exit_status, const std::string& what) : std::runtime_error(what), status(exit_status) {}

  int status;
};

/// Ends the command with this status and no message of its own: the reason is known already.
struct CommandEnd {
  int status;
  bool interrupted = false;  ///< a signal to this command ended it
};

}  // namespace tool
