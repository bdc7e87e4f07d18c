#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "simulator/model/board.h"
#include "simulator/model/call_record.h"
#include "simulator/model/faults.h"
#include "simulator/model/gui.h"
#include "simulator/model/power_supply.h"
#include "simulator/model/sensors.h"
#include "simulator/model/services.h"
#include "simulator/model/unit_faults.h"
#include "simulator/model/unit_files.h"

namespace simulator::model {

/// The simulated unit: one file in shared memory with the state of everything behind the closed interfaces. Every
/// process of the unit, and every program that works on it from outside, maps the same file and sees changes
/// immediately. Any thread may use any part at any time.
class UnitModel {
public:
  /// Sets the values of a new unit before it becomes visible.
  using Fill = std::function<void(UnitModel&)>;

  /// Creates the model file of a new unit, filled by `fill`; without sysfs files unless `fill` writes some. Replaces an
  /// existing file; processes that have it open keep the old unit. Throws std::system_error, and any exception of
  /// `fill`.
  static UnitModel create(const std::string& path, const Fill& fill = {});
  /// Maps an existing model file. Throws std::system_error if that fails, std::runtime_error if the file is not a model
  /// of this version.
  static UnitModel open(const std::string& path);
  /// The model of the unit that this process belongs to, ${UNIT_RUN:-/run/unit}/model, mapped by the first call until
  /// the process ends. Throws like open(); the next call then tries again.
  static UnitModel& of_this_unit();

  UnitModel(const UnitModel&) = delete;
  UnitModel& operator=(const UnitModel&) = delete;
  ~UnitModel();

  Board& board() noexcept { return shared_->board; }
  PowerSupply& power_supply() noexcept { return shared_->power_supply; }
  Sensors& sensors() noexcept { return shared_->sensors; }
  Services& services() noexcept { return shared_->services; }
  Gui& gui() noexcept { return shared_->gui; }
  UnitFaults& faults() noexcept { return faults_; }
  CallRecord& record() noexcept { return record_; }
  /// The files of the unit: those in the folders sys/ and tmp/ of the unit's state folder (for a model elsewhere than
  /// in run/unit/: the folders beside the model).
  UnitFiles& files() noexcept { return files_; }

  /// For the simulated closed libraries: the faults that their calls meet, and what the board shows while it is stuck.
  Faults& crossings() noexcept { return shared_->faults; }
  Board& held_board() noexcept { return shared_->held_board; }

  /// Whether crossings are watched: the record is on, calls are counted or a fault is armed. Costs one plain load.
  /// Crossings do extra work only if true.
  bool watched() const noexcept { return shared_->faults.watch().any(); }
  /// Switches call counting on and off; recorded and faulted units always count.
  void count_calls(bool on) noexcept { shared_->faults.watch().set(Watch::COUNTED, on); }
  bool counts_calls() const noexcept { return shared_->faults.watch().has(Watch::COUNTED); }

  /// Crosses a closed interface: counts the call, records it with its arguments (JSON text) and returns its fault. For
  /// a SLOW fault, returns after the delay.
  Fault cross(Point point, const std::string& args);

  /// The folder that holds the model ("/run/unit").
  const std::string& run_folder() const noexcept { return run_folder_; }

private:
  /// The contents of the file.
  struct Shared {
    static constexpr std::uint64_t MAGIC = 0x31304C444D54494E;
    static constexpr std::uint32_t VERSION = 2;

    std::uint64_t magic = MAGIC;
    std::uint32_t version = VERSION;
    std::uint32_t size = sizeof(Shared);
    Board board;
    PowerSupply power_supply;
    Sensors sensors;
    Services services;
    Gui gui;
    Faults faults;
    KeptTexts kept_texts;
    Board held_board;
  };

  UnitModel(const std::string& path, Shared* shared);
  static void prepare(const std::string& path, const Fill& fill);
  static void* map(int descriptor, const std::string& path);

  Shared* shared_;
  std::string run_folder_;
  CallRecord record_;
  UnitFiles files_;
  UnitFaults faults_{*this};
};

}  // namespace simulator::model
