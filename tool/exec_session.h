#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tool/arguments.h"
#include "tool/command.h"

namespace tool {

/// A command to run on a unit.
struct UnitCommand {
  std::vector<std::string> argv;  ///< a program in the build folder may be named by its path there
  std::map<std::string, std::string> environment;
  bool terminal = false;  ///< gives it a terminal of its own, of the size of the one on standard input
  bool input = true;      ///< passes standard input on; otherwise it has none
};

/// Runs the command with this program's standard streams until it exits and returns its status (128 + n if signal n
/// killed it). Termination signals are passed on to it; a second one abandons it. With a terminal, the one on standard
/// input is in raw mode meanwhile. Throws CommandError with status 126 or 127 if it cannot be started. Main thread
/// only.
int run_on_unit(const std::filesystem::path& socket, const UnitCommand& command);

/// Receives the output of a command.
using Sink = std::function<void(std::string_view bytes)>;
/// Returns the next bytes of a command's input; "" at its end.
using Source = std::function<std::string()>;

/// Runs the command with the given streams and returns its status. Its standard error goes to this program's. Throws
/// CommandError if it cannot be started.
int pipe_through_unit(const std::filesystem::path& socket, const UnitCommand& command, const Source& source,
                      const Sink& sink);

/// "--env NAME=VALUE" of a command line, and its values. Throws UsageError.
Option environment_option();
std::map<std::string, std::string> given_environment(const Arguments& arguments);

}  // namespace tool
