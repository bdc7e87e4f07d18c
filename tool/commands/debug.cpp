#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/host_process.h"
#include "tool/output.h"

namespace tool {
namespace {

/// gdb on the host: breakpoints may name functions of libraries that are loaded later, and the unit's files are those
/// that the host sees.
std::vector<std::string> debugger(int pid) {
  const std::string number = std::to_string(pid);
  return {"gdb", "-iex", "set breakpoint pending on", "-iex", "set sysroot /proc/" + number + "/root", "-p", number};
}

std::string as_typed(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    line += (line.empty() ? "" : " ") + (word.find(' ') == std::string::npos ? word : "'" + word + "'");
  }
  return line;
}

int run(const Arguments& arguments) {
  const nlohmann::ordered_json unit = Connection(arguments).get("/v1/unit");
  const nlohmann::ordered_json inside = unit.at("host").value("pid", nlohmann::ordered_json());
  if (inside.is_null() || unit["host"].value("state", "") == "exited") {
    throw CommandError(STATUS_FAILED, "no host is running on " + unit.at("name").get<std::string>());
  }
  const std::optional<int> pid = host_pid_outside(unit);
  if (!pid) {
    throw CommandError(STATUS_FAILED, "the host's process number outside is not known; run: unit exec -u " +
                                          unit.at("name").get<std::string>() +
                                          " -- gdb -iex 'set breakpoint pending on' -p " + inside.dump());
  }
  std::vector<std::string> words = debugger(*pid);
  const std::vector<std::string>& more = arguments.all("ARGUMENT");
  words.insert(words.end(), more.begin(), more.end());
  if (arguments.has("print")) {
    print(as_typed(words) + '\n');
    return 0;
  }
  std::vector<char*> argv;
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
  throw CommandError(errno == ENOENT ? 127 : 126, std::string("gdb: ") + std::strerror(errno));
}

}  // namespace

Command debug_command() {
  return {"debug",
          "Debugging",
          "Attach gdb to the host of a unit",
          {unit_option(), {"print", 0, "", "print gdb's command line instead"}},
          {{"ARGUMENT", "further argument of gdb, after \"--\"", Count::ANY}},
          run,
          true};
}

}  // namespace tool
