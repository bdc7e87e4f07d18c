// unit-services: the services that other processes of the unit offer over CORBA.
//   unit-services                            all of them, one process per service
//   unit-services --only SERVICE             one of them, in this process
// The unit's model is ${UNIT_RUN:-/run/unit}/model, its naming service listens on 127.0.0.1:$UNIT_NAMING_PORT.
// Exits with 0 on SIGTERM and SIGINT, 1 if a service cannot run, 2 on bad usage.

#include <signal.h>
#include <sys/prctl.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <optional>
#include <string>

#include <tao/corba.h>

#include "simulator/services/service_process.h"
#include "simulator/services/supervisor.h"

namespace {

using simulator::model::UnitModel;

std::optional<unsigned> naming_port() {
  const char* text = std::getenv("UNIT_NAMING_PORT");
  unsigned port = 0;
  const char* end = text == nullptr ? nullptr : text + std::strlen(text);
  const bool whole = text != nullptr && std::from_chars(text, end, port).ptr == end;
  return whole && port >= 1 && port <= 65535 ? std::optional(port) : std::nullopt;
}

int run(const std::string& only, unsigned port, int report) {
  UnitModel& model = UnitModel::of_this_unit();
  if (only.empty()) {
    return simulator::services::supervise(model);
  }
  if (report >= 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  }
  simulator::services::run_service(model, *simulator::memory::named_in(simulator::model::SERVICES, only), port, report);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"The services of the simulated unit", "unit-services"};
  std::string only;
  int report = -1;
  app.add_option("--only", only, "Run this service alone, in this process")->check([](const std::string& name) {
    return simulator::memory::named_in(simulator::model::SERVICES, name) ? "" : "unknown service " + name;
  });
  app.add_option("--report", report, "Descriptor on which a service reports to its parent")->group("");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  const std::string who = only.empty() ? "unit-services" : "unit-services: " + only;
  const std::optional<unsigned> port = naming_port();
  if (!port) {
    std::fprintf(stderr, "%s: UNIT_NAMING_PORT must be a port number\n", who.c_str());
    return 2;
  }
  ::signal(SIGPIPE, SIG_IGN);
  try {
    return run(only, *port, report);
  } catch (const CORBA::Exception& error) {
    std::fprintf(stderr, "%s: naming service at 127.0.0.1:%u: %s\n", who.c_str(), *port, error._name());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", who.c_str(), error.what());
  }
  return 1;
}
