#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/model/unit_model.h"
#include "simulator/settings/unit_file.h"
#include "simulator/sysroot/private_root.h"
#include "simulator/sysroot/state_folder.h"
#include "tool/host_client.h"
#include "tool/output_tee.h"
#include "tool/signals.h"

namespace tool {

/// Options of a unit to start.
struct UnitChoice {
  std::string unit_file;  ///< empty: the one in the build folder
  std::string state;      ///< state folder to keep; empty: temporary
  std::string library;    ///< path outside or inside; empty: the one in the build folder
  bool dhcp_server = false;
};

/// The build folder of this program, which contains the unit's programs.
std::filesystem::path build_folder();
/// The path inside the unit of a file below the build folder; other paths are returned unchanged.
std::string seen_inside(const std::string& path);
/// The environment variables passed on to the unit's programs: those of sanitizers and test frameworks, UNIT_* (except
/// UNIT_RUN and UNIT_NAMING_PORT), TZ and TERM.
std::vector<std::pair<std::string, std::string>> passed_environment();
/// The values of the chosen unit file. Throws UnitFileError.
simulator::settings::UnitFile load_unit_file(const std::string& path);
/// The chosen state folder. Throws StateFolderError.
simulator::sysroot::StateFolder make_state(const std::string& path);
/// Throws CommandError if this machine cannot create a private root.
void require_private_root();

/// Descriptors that receive the host's output in addition to the logs run/unit/log/host.out and host.err; -1: none.
struct OutputTargets {
  int out = 1;
  int err = 2;
};

/// A unit started by this command: private root with naming service, services and network, and the host with the
/// library. The destructor stops everything. Main thread only.
class StartedUnit {
public:
  /// Starts the unit and waits until its host accepts connections. `record`: record calls from the start. Throws
  /// CommandEnd with the host's status if the host exits first, CommandEnd on a termination signal, CommandError,
  /// UnitFileError and StateFolderError.
  StartedUnit(const UnitChoice& choice, const OutputTargets& targets, const Signals& signals, bool record = false);
  ~StartedUnit();

  HostClient& host() { return *host_; }
  simulator::model::UnitModel& model() { return model_; }
  const std::filesystem::path& state() const { return state_.path(); }
  /// Writes the host's output only to the logs from now on.
  void mute();
  std::vector<std::string> last_output() const { return out_.last_lines(); }
  std::vector<std::string> last_errors() const { return err_.last_lines(); }

  /// Waits for `time`; throws CommandEnd as the constructor does.
  void pause(std::chrono::milliseconds time);
  /// Waits until the descriptor is readable; throws like pause().
  void wait_readable(int descriptor) { wait(descriptor, std::chrono::milliseconds(-1)); }

private:
  simulator::sysroot::RootOptions root_options(const UnitChoice& choice) const;
  /// The path of the library inside. A library outside the build folder is copied into the unit.
  std::string bring_inside(const std::string& library) const;
  /// Waits for `descriptor` (-1: none) or the time; throws CommandEnd when the unit exits or this command receives a
  /// termination signal.
  void wait(int descriptor, std::chrono::milliseconds time);

  const Signals& signals_;
  simulator::sysroot::StateFolder state_;
  simulator::model::UnitModel model_;
  OutputTee out_;
  OutputTee err_;
  std::optional<simulator::sysroot::PrivateRoot> root_;
  std::optional<HostClient> host_;
};

}  // namespace tool
