#include "tool/program.h"

#include <cstdio>
#include <exception>
#include <nlohmann/json.hpp>

#include "control/client/errors.h"
#include "tool/arguments.h"
#include "tool/commands/table.h"
#include "tool/errors.h"
#include "tool/output.h"

namespace tool {
namespace {

using control::client::ApiError;
using control::client::LaunchError;
using control::client::NoSuchUnit;

/// The status for an answer of the control service: a bad name or value is bad usage.
int status_of(const ApiError& error) {
  return error.status == 400 || error.status == 404 ? STATUS_BAD_USAGE : STATUS_FAILED;
}

int run_command(const Command& command, const std::vector<std::string>& words) {
  const Arguments arguments = Arguments::parse(command, words);
  if (arguments.has("help")) {
    print(help_of(command));
    return STATUS_FINE;
  }
  return command.run(arguments);
}

/// Runs what the words ask for; `prefix` becomes that of the command's errors.
int run(std::vector<std::string> words, std::string& prefix) {
  if (words.empty()) {
    std::fputs(overview(commands()).c_str(), stderr);
    return STATUS_BAD_USAGE;
  }
  if (words[0] == "--version") {
    print("unit " UNIT_VERSION "\n");
    return STATUS_FINE;
  }
  if (words[0] == "--help" || words[0] == "-h") {
    words[0] = "help";
  }
  const Command& command = find_command(words[0]);
  prefix = command.name + ": ";
  words.erase(words.begin());
  return run_command(command, words);
}

}  // namespace

int run_program(const std::vector<std::string>& words) {
  std::string prefix;
  const auto fail = [&prefix](int status, const std::string& reason) {
    complain(prefix + reason);
    return status;
  };
  try {
    const int status = run(words, prefix);
    flush_output();
    return status;
  } catch (const CommandEnd& end) {
    return end.status;
  } catch (const CommandError& error) {
    return fail(error.status, error.what());
  } catch (const ApiError& error) {
    return fail(status_of(error), error.what());
  } catch (const NoSuchUnit& error) {
    return fail(STATUS_BAD_USAGE, error.what());
  } catch (const LaunchError& error) {
    return fail(error.status, error.what());
  } catch (const nlohmann::json::exception& error) {
    return fail(STATUS_FAILED, "unexpected answer of the unit's control service: " + std::string(error.what()));
  } catch (const std::exception& error) {
    return fail(STATUS_FAILED, error.what());
  }
}

}  // namespace tool
