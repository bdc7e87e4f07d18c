// The process that defines `Hardware`, loads the hardware library and calls its operations by request.

#include <signal.h>

#include <cstddef>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/base_hardware.h"
#include "host/exception_name.h"
#include "host/library.h"
#include "host/requests.h"
#include "host/server.h"

namespace {

constexpr int STATUS_NOT_LOADED = 1;
constexpr int STATUS_BAD_USAGE = 2;

struct Options {
  std::vector<std::string> libraries{"/opt/unit/lib/libradalt_hardware.so"};
  std::string socket = "/run/unit/host.sock";
  bool preset_hardware = false;
  bool load_only = false;
};

/// The running server, for signal handlers.
host::Server* server_to_leave = nullptr;

void leave_on_signal(int) {
  server_to_leave->leave();
}

/// Initial value of `Hardware` with --preset-hardware: never called, only compared.
BASE_HARDWARE* stand_in() {
  alignas(std::max_align_t) static unsigned char bytes[sizeof(BASE_HARDWARE)] = {};
  return reinterpret_cast<BASE_HARDWARE*>(bytes);
}

void serve(const Options& options) {
  // Both outlive this function: a call that never returns uses them until the process ends.
  auto* requests = new host::Requests(options.preset_hardware);
  auto* server =
      new host::Server(options.socket, [requests](const std::string& line) { return requests->serve(line); });
  server_to_leave = server;
  for (const int number : {SIGTERM, SIGINT}) {
    struct sigaction action {};
    action.sa_handler = leave_on_signal;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
  }
  server->run();
}

int run(const Options& options) {
  if (options.preset_hardware) {
    Hardware = stand_in();
  }
  try {
    for (const std::string& library : options.libraries) {
      host::load_library(library);
    }
  } catch (const host::LoadError& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return STATUS_NOT_LOADED;
  }
  if (!options.load_only) {
    serve(options);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Loads the hardware library and calls its operations by request.", "unit-host");
  app.add_option("--library", options.libraries, "library to load; repeatable, loaded in order")->capture_default_str();
  app.add_option("--socket", options.socket, "UNIX socket to listen on")->capture_default_str();
  app.add_flag("--preset-hardware", options.preset_hardware, "set Hardware to a dummy before loading");
  app.add_flag("--load-only", options.load_only, "load, then exit without serving requests");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : STATUS_BAD_USAGE;
  }
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "unit-host: %s\n", error.what());
  } catch (...) {
    std::fprintf(stderr, "unit-host: exception of type %s\n", host::current_exception_name().c_str());
  }
  return STATUS_NOT_LOADED;
}
