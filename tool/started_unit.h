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

/// Which unit is started, and on what.
struct UnitChoice {
  std::string unit_file;  ///< empty: the one that comes with the build
  std::string state;      ///< state folder, kept; empty: a new one, removed at the end
  std::string library;    ///< as seen from outside or inside; empty: the build's own
  bool dhcp_server = false;
};

/// The build folder that this program belongs to, from where the unit's programs are taken.
std::filesystem::path build_folder();
/// A path below the build folder as the unit sees it; others stay as they are.
std::string seen_inside(const std::string& path);
/// What of this command's environment the unit's programs see: the sanitizers' and test frameworks' settings, UNIT_*
/// (but for the unit's own), TZ and TERM.
std::vector<std::pair<std::string, std::string>> passed_environment();
/// The chosen unit file's values. Throws UnitFileError.
simulator::settings::UnitFile load_unit_file(const std::string& path);
/// The chosen state folder. Throws StateFolderError.
simulator::sysroot::StateFolder make_state(const std::string& path);
/// Throws CommandError where this machine gives no private root.
void require_private_root();

/// Where the host's output goes beside the unit's logs, run/unit/log/host.out and host.err; -1: nowhere.
struct OutputTargets {
  int out = 1;
  int err = 2;
};

/// A unit that this command has started: its root with naming service, services and network, and the host with the
/// library in it. Everything ends with the object. Main thread only.
class StartedUnit {
public:
  /// Starts the unit and waits until its host answers. `record`: the record of calls is on from the start. Throws
  /// CommandEnd with the host's status where the host ends before, or on a signal that ends this command;
  /// CommandError, UnitFileError, StateFolderError.
  StartedUnit(const UnitChoice& choice, const OutputTargets& targets, const Signals& signals, bool record = false);
  ~StartedUnit();

  HostClient& host() { return *host_; }
  simulator::model::UnitModel& model() { return model_; }
  const std::filesystem::path& state() const { return state_.path(); }
  /// Keeps the host's output to the unit's logs from now on.
  void mute();
  std::vector<std::string> last_output() const { return out_.last_lines(); }
  std::vector<std::string> last_errors() const { return err_.last_lines(); }

  /// Waits `time`, or less where something ends: throws CommandEnd as the constructor does.
  void pause(std::chrono::milliseconds time);
  /// Waits until the descriptor is readable; throws as pause().
  void wait_readable(int descriptor) { wait(descriptor, std::chrono::milliseconds(-1)); }

private:
  simulator::sysroot::RootOptions root_options(const UnitChoice& choice) const;
  /// Where the library is inside; one that lies elsewhere than in the build folder is copied into the unit.
  std::string bring_inside(const std::string& library) const;
  /// Waits for `descriptor` (-1: none) or the time; throws CommandEnd when the unit or this command ends.
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
