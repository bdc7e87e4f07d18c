// The command line of simulated units.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <exception>

#include "control/client/client.h"
#include "tool/arguments.h"
#include "tool/commands/table.h"
#include "tool/errors.h"
#include "tool/output.h"

namespace {

using control::client::ApiError;
using control::client::ConnectionError;
using control::client::LaunchError;
using control::client::NoSuchUnit;

/// Standard streams that the caller has closed would be taken by the first files that this program opens.
void open_standard_streams() {
  for (int stream = 0; stream <= 2; ++stream) {
    if (fcntl(stream, F_GETFD) == -1) {
      // The wrong way round, so that writing and reading fail as on a closed stream.
      open("/dev/null", stream == 0 ? O_WRONLY : O_RDONLY);
    }
  }
}

/// The status for an answer of the control service: a bad name or value is bad usage.
int status_of(const ApiError& error) {
  return error.status == 400 || error.status == 404 ? tool::STATUS_BAD_USAGE : tool::STATUS_FAILED;
}

int run(const tool::Command& command, const std::vector<std::string>& words) {
  const tool::Arguments arguments = tool::Arguments::parse(command, words);
  if (arguments.has("help")) {
    tool::print(help_of(command));
    tool::flush_output();
    return tool::STATUS_FINE;
  }
  const int status = command.run(arguments);
  tool::flush_output();
  return status;
}

/// Runs what the words ask for; `name` becomes the name of the command for errors.
int run(std::vector<std::string> words, std::string& name) {
  if (words.empty()) {
    std::fputs(tool::overview(tool::commands()).c_str(), stderr);
    return tool::STATUS_BAD_USAGE;
  }
  if (words[0] == "--version") {
    tool::print("unit " UNIT_VERSION "\n");
    tool::flush_output();
    return tool::STATUS_FINE;
  }
  if (words[0] == "--help" || words[0] == "-h") {
    words[0] = "help";
  }
  const tool::Command& command = tool::find_command(words[0]);
  name = command.name + ": ";
  words.erase(words.begin());
  return run(command, words);
}

}  // namespace

int main(int argc, char** argv) {
  open_standard_streams();
  signal(SIGPIPE, SIG_IGN);
  std::string name;
  const auto complain = [&name](int status, const std::exception& error) {
    tool::complain(name + error.what());
    return status;
  };
  try {
    return run({argv + 1, argv + argc}, name);
  } catch (const tool::CommandEnd& end) {
    return end.status;
  } catch (const tool::CommandError& error) {
    return complain(error.status, error);
  } catch (const ApiError& error) {
    return complain(status_of(error), error);
  } catch (const NoSuchUnit& error) {
    return complain(tool::STATUS_BAD_USAGE, error);
  } catch (const LaunchError& error) {
    return complain(error.status, error);
  } catch (const ConnectionError& error) {
    return complain(tool::STATUS_FAILED, error);
  } catch (const std::exception& error) {
    return complain(tool::STATUS_FAILED, error);
  }
}
