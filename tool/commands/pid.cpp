#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/host_process.h"
#include "tool/output.h"
#include "tool/tables.h"

namespace tool {
namespace {

using nlohmann::ordered_json;

int run(const Arguments& arguments) {
  const ordered_json unit = Connection(arguments).get("/v1/unit");
  ordered_json pids = unit.at("process");
  const std::optional<int> host = host_pid_outside(unit);
  pids["host"] = host ? ordered_json(*host) : ordered_json();
  pids["host_inside"] = unit.at("host").value("pid", ordered_json());
  if (!host) {
    pids["reason"] = pids["host_inside"].is_null() ? "no host is running" : "the host's number outside is not known";
  }
  if (arguments.has("json")) {
    print_json(pids);
    return 0;
  }
  Table table({"PROCESS", "PID"});
  for (const char* name : {"supervisor", "service", "root", "host"}) {
    const ordered_json pid = pids.value(name, ordered_json());
    table.add({name, pid.is_null() ? "-" : pid.dump()});
  }
  print(table.text());
  return 0;
}

}  // namespace

Command pid_command() {
  return {"pid",
          "Debugging",
          "Print the process numbers of a unit: supervisor, service, root, host",
          {unit_option(), json_option()},
          {},
          run};
}

}  // namespace tool
