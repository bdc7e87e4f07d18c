#include <unistd.h>

#include <map>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/line_buffer.h"
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

/// Prints lines; on a terminal, control characters are escaped.
class Printer {
public:
  explicit Printer(std::map<std::string, std::string> prefixes) : prefixes_(std::move(prefixes)) {}

  bool shows(const std::string& log) const { return prefixes_.count(log) != 0; }
  void add(const std::string& log, std::string_view bytes) {
    for (const std::string& line : buffers_[log].add(bytes)) {
      show(log, line);
    }
  }
  /// Prints the last lines of the logs that do not end with a newline.
  void finish() {
    for (auto& [log, buffer] : buffers_) {
      const std::string rest = buffer.rest();
      if (!rest.empty()) {
        show(log, rest);
      }
    }
  }

private:
  void show(const std::string& log, const std::string& line) const {
    print(prefixes_.at(log) + (escapes_ ? printable(line) : line) + '\n');
  }

  std::map<std::string, std::string> prefixes_;
  std::map<std::string, LineBuffer> buffers_;
  bool escapes_ = isatty(STDOUT_FILENO) == 1;
};

/// Prints the logs written so far.
void print_kept(Connection& connection, Printer& printer) {
  for (const ordered_json& log : connection.get("/v1/logs").at("logs")) {
    const std::string name = log.at("name");
    if (printer.shows(name)) {
      printer.add(name, connection.client().text("/v1/logs/" + control::client::escaped(name)));
    }
  }
}

int run(const Arguments& arguments) {
  Connection connection(arguments);
  Printer printer(chosen_logs(arguments));
  if (!arguments.has("follow")) {
    print_kept(connection, printer);
    printer.finish();
    return 0;
  }
  EventStream stream(connection.socket(), "/v1/stream?events=log");
  print_kept(connection, printer);
  flush_output();
  for (;;) {
    const std::optional<Event> event = stream.next(std::chrono::hours(1));
    if (event && event->type == "log" && printer.shows(event->data.value("name", ""))) {
      printer.add(event->data["name"], event->data.value("text", ""));
      flush_output();
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
