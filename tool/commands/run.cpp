#include <filesystem>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/exec_session.h"
#include "tool/host_end.h"
#include "tool/host_output.h"
#include "tool/launch.h"
#include "tool/live_view.h"
#include "tool/operations.h"
#include "tool/output.h"
#include "tool/started_unit.h"
#include "tool/terminal.h"
#include "tool/unit_state.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

using control::client::ApiError;
using control::client::Client;
using nlohmann::json;
using nlohmann::ordered_json;

constexpr int PATIENCE_ONCE_MS = 10000;
constexpr int FIRST_PATIENCE_MS = 200;
const std::string HOST = "unit-host";
const std::string HOST_INSIDE = "/opt/unit/bin/unit-host";

/// A tool such as a debugger needs the terminal: the host then runs as a command on it.
bool runs_on_terminal(const Arguments& arguments) {
  return arguments.has("wrap") && !arguments.has("detach") && has_terminal();
}

json document_of(const Arguments& arguments) {
  json launch = launch_document(arguments);
  launch["detach"] = arguments.has("detach");
  if (arguments.has("COMMAND") || runs_on_terminal(arguments)) {
    return launch;
  }
  const std::string program = arguments.value("host").value_or(HOST);
  launch["host"] = program.find('/') == std::string::npos ? program : whole_path(program);
  if (const auto tool = arguments.value("wrap")) {
    launch["host_wrap"] = shell_words("--wrap", *tool);
  }
  return launch;
}

/// Runs a command on a fresh unit, which is gone afterwards.
int run_on_fresh_unit(const json& launch, std::vector<std::string> words) {
  StartedUnit unit(launch);
  UnitCommand command;
  command.argv = std::move(words);
  command.terminal = has_terminal();
  const int status = run_on_unit(unit.socket(), command);
  unit.stop();
  return status;
}

/// The command line of a host that a tool runs on the terminal; its library is shown on the unit under its own path.
std::vector<std::string> wrapped_host(const Arguments& arguments, json& launch) {
  std::vector<std::string> words = shell_words("--wrap", arguments.text("wrap"));
  const std::string program = arguments.value("host").value_or(HOST);
  words.push_back(program == HOST ? HOST_INSIDE : program);
  if (program == HOST) {
    words.insert(words.end(), {"--socket", "/run/unit/host.sock"});
    const std::string library = launch["library"];
    if (!library.empty()) {
      words.insert(words.end(), {"--library", library});
    }
    if (fs::exists(library)) {
      launch["binds"].push_back(library);
    }
  }
  return words;
}

/// Calls an operation for "--once"; the host's output is shown meanwhile.
ordered_json call(Client& client, const std::string& operation, const json& arguments) {
  try {
    ordered_json answer =
        client.send("POST", "/v1/operations/" + operation, {{"args", arguments}, {"timeout_ms", PATIENCE_ONCE_MS}});
    const std::string exception = exception_in(answer);
    if (!exception.empty()) {
      throw NoValue(operation + ": " + exception);
    }
    return answer;
  } catch (const ApiError& error) {
    const ordered_json host = client.get("/v1/unit").at("host");
    if (host_has_ended(host)) {
      throw HostEnded{host};
    }
    constexpr int TIMED_OUT = 504;
    throw NoValue(error.status == TIMED_OUT ? operation + ": no answer for 10 s" : std::string(error.what()));
  }
}

void show_once(const StartedUnit& unit, bool as_json) {
  HostOutput output(unit.socket());
  Client client(unit.socket());
  output.show_kept(client);
  client.wait_with([&output](int descriptor) { output.wait_readable(descriptor); });
  const ordered_json state = read_unit_state(
      [&client](const std::string& operation, const json& arguments) { return call(client, operation, arguments); },
      FIRST_PATIENCE_MS);
  output.show_arrived();
  if (as_json) {
    print_json(state);
  } else {
    print(as_text(sections_of(state)));
  }
}

void show_started(const StartedUnit& unit, bool as_json) {
  if (as_json) {
    print_json({{"name", unit.unit().name}, {"supervisor", unit.unit().supervisor}});
  } else {
    print(unit.unit().name + '\n');
  }
}

bool shows_screen(const Arguments& arguments) {
  return !arguments.has("once") && !arguments.has("json") && can_draw_screen();
}

void show(StartedUnit& unit, const Arguments& arguments) {
  const bool as_json = arguments.has("json");
  if (arguments.has("detach")) {
    const ordered_json host = Client(unit.socket()).get("/v1/unit").at("host");
    if (host_has_ended(host)) {
      throw HostEnded{host};
    }
    show_started(unit, as_json);
    unit.detach();
  } else if (arguments.has("once")) {
    show_once(unit, as_json);
  } else {
    const auto view = as_json ? json_view() : shows_screen(arguments) ? screen_view() : line_view();
    show_live(unit.unit(), *view);
  }
}

int run_host(const json& launch, const Arguments& arguments) {
  StartedUnit unit(launch);
  try {
    show(unit, arguments);
  } catch (const HostEnded& end) {
    Client client(unit.socket());
    // The other views have shown the output as it came.
    const bool hidden = arguments.has("detach") || shows_screen(arguments);
    report_host_end(client, end.host, launch["state"], hidden);
    return STATUS_FAILED;
  }
  unit.stop();
  return STATUS_FINE;
}

int run(const Arguments& arguments) {
  for (const char* option : {"once", "json", "host", "wrap", "detach"}) {
    if (arguments.has("COMMAND") && arguments.has(option)) {
      throw UsageError(std::string("--") + option + ": cannot be used with a command");
    }
  }
  if (arguments.has("once") && arguments.has("detach")) {
    throw UsageError("--once: cannot be used with --detach");
  }
  json launch = document_of(arguments);
  if (arguments.has("COMMAND")) {
    return run_on_fresh_unit(launch, arguments.all("COMMAND"));
  }
  if (runs_on_terminal(arguments)) {
    const std::vector<std::string> words = wrapped_host(arguments, launch);
    return run_on_fresh_unit(launch, words);
  }
  return run_host(launch, arguments);
}

}  // namespace

Command run_command() {
  std::vector<Option> options = launch_options();
  options.insert(options.end(),
                 {{"host", 0, "PROGRAM", "host to run (default: unit-host)", false, Offer::FILES},
                  {"wrap", 0, "TOOL", "run the host under a tool and its arguments: 'gdb --args', 'strace -f'"},
                  {"detach", 'd', "", "print the unit's name and leave it running"},
                  {"once", 0, "", "print the unit's state once and stop it"},
                  {"json", 0, "", "print the state as JSON, one document per line"}});
  return {"run",
          "Units",
          "Start a unit: show its state, or run a command on it",
          options,
          {{"COMMAND", "command to run instead of a host; its status is the program's", Count::ANY}},
          run,
          true};
}

}  // namespace tool
