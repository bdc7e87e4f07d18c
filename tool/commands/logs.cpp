#include <unistd.h>

#include <map>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/log_lines.h"
#include "tool/output.h"
#include "tool/text.h"

namespace tool {
namespace {

using control::client::Event;
using control::client::EventStream;
using nlohmann::ordered_json;

struct Source {
  const char* option;
  std::vector<std::string> logs;
};

const std::vector<Source>& sources() {
  static const std::vector<Source> all = {{"host", {"host.out", "host.err"}},
                                          {"services", {"services.log"}},
                                          {"naming", {"names.log"}},
                                          {"network", {"network.log"}},
                                          {"agent", {"agent.log"}}};
  return all;
}

/// The chosen logs, each with the word that stands before its lines if several sources are shown.
std::map<std::string, std::string> chosen_logs(const Arguments& arguments) {
  std::size_t count = 0;
  for (const Source& source : sources()) {
    count += arguments.has(source.option) ? 1 : 0;
  }
  std::map<std::string, std::string> logs;
  for (const Source& source : sources()) {
    if (count == 0 || arguments.has(source.option)) {
      for (const std::string& log : source.logs) {
        logs[log] = count == 1 ? "" : std::string(source.option) + ": ";
      }
    }
  }
  return logs;
}

/// Takes the logs written so far.
void take_kept(Connection& connection, const std::map<std::string, std::string>& chosen, LogLines& lines) {
  for (const ordered_json& log : connection.rows("/v1/logs", "logs")) {
    const std::string name = log.at("name");
    if (chosen.count(name) != 0) {
      lines.take_kept(name, connection.client().text("/v1/logs/" + control::client::escaped(name)));
    }
  }
}

int run(const Arguments& arguments) {
  const std::map<std::string, std::string> chosen = chosen_logs(arguments);
  Connection connection(arguments);
  // The unit's programs must not control the terminal.
  const bool escapes = isatty(STDOUT_FILENO) == 1;
  LogLines lines([&chosen, escapes](const std::string& log, const std::string& line) {
    print(chosen.at(log) + (escapes ? printable(line) : line) + '\n');
  });
  if (!arguments.has("follow")) {
    take_kept(connection, chosen, lines);
    lines.finish();
    return 0;
  }
  EventStream stream(connection.socket(), "/v1/stream?events=log");
  take_kept(connection, chosen, lines);
  for (;;) {
    flush_output();
    const std::optional<Event> event = stream.next(std::chrono::hours(1));
    if (event && event->type == "log" && chosen.count(event->data.value("name", "")) != 0) {
      lines.take(*event);
    }
  }
}

}  // namespace

Command logs_command() {
  return {"logs",
          "Units",
          "Print what the programs of a unit have written",
          {unit_option(),
           {"follow", 'f', "", "go on printing what they write, until Ctrl-C"},
           {"host", 0, "", "of the host and the library"},
           {"services", 0, "", "of the services"},
           {"naming", 0, "", "of the naming service"},
           {"network", 0, "", "of the network's set-up and the DHCP server"},
           {"agent", 0, "", "of the unit's agent"}},
          {},
          run};
}

}  // namespace tool
