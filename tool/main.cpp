// The command line of the simulated unit.

#include <sys/stat.h>

#include <cstdio>
#include <exception>

#include <CLI/CLI.hpp>

#include "commands.h"
#include "errors.h"
#include "simulator/model/unit_file.h"
#include "simulator/sysroot/state_folder.h"

namespace {

int complain(int status, const char* what) {
  std::fprintf(stderr, "unit: %s\n", what);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  // What is made for a unit is for its programs to read, whoever runs them.
  umask(022);
  CLI::App app("Runs the hardware library on a simulated unit, and looks after units that run.", "unit");
  app.require_subcommand(1);
  tool::add_run(app);
  tool::add_exec(app);
  tool::add_shutdown(app);
  tool::add_settings(app);
  tool::add_requests(app);
  tool::add_dialogs(app);
  try {
    app.parse(argc, argv);
    return tool::STATUS_FINE;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? tool::STATUS_FINE : tool::STATUS_BAD_USAGE;
  } catch (const tool::CommandEnd& end) {
    return end.status;
  } catch (const tool::CommandError& error) {
    return complain(error.status, error.what());
  } catch (const simulator::model::UnitFileError& error) {
    return complain(tool::STATUS_BAD_USAGE, error.what());
  } catch (const simulator::sysroot::StateFolderError& error) {
    return complain(tool::STATUS_BAD_USAGE, error.what());
  } catch (const std::exception& error) {
    return complain(tool::STATUS_FAILED, error.what());
  }
}
