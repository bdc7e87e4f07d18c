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
#include "simulator/model/sysfs_files.h"

namespace simulator::model {

/// The simulated unit: one file in shared memory that holds the state of everything behind the closed interfaces.
/// Every process of the unit, and whoever works on it from outside, maps the same file and sees every change at once.
/// Any thread may use any part at any time.
class UnitModel {
public:
  /// Sets the values of a new unit, before anybody else sees it.
  using Fill = std::function<void(UnitModel&)>;

  /// Creates the model file of a new unit, filled by `fill`, without sysfs files unless `fill` writes some. Replaces an
  /// older file of that name; processes that have it open keep the old unit. Throws std::system_error, and what `fill`
  /// throws.
  static UnitModel create(const std::string& path, const Fill& fill = {});
  /// Maps an existing model file. Throws std::system_error where it cannot, std::runtime_error where it is none.
  static UnitModel open(const std::string& path);
  /// The model of the unit that this process belongs to, ${UNIT_RUN:-/run/unit}/model, mapped by the first call and
  /// kept until the process ends. Throws as open(); the next call then tries again.
  static UnitModel& of_this_unit();

  UnitModel(const UnitModel&) = delete;
  UnitModel& operator=(const UnitModel&) = delete;
  ~UnitModel();

  Board& board() noexcept { return shared_->board; }
  PowerSupply& power_supply() noexcept { return shared_->power_supply; }
  Sensors& sensors() noexcept { return shared_->sensors; }
  Services& services() noexcept { return shared_->services; }
  Gui& gui() noexcept { return shared_->gui; }
  Faults& faults() noexcept { return shared_->faults; }
  CallRecord& record() noexcept { return record_; }
  /// The sysfs files of the unit: those in the folder sys/ of the unit's state folder (for a model elsewhere than in
  /// run/unit/: the folder sys/ beside the model).
  SysfsFiles& sysfs() noexcept { return sysfs_; }

  /// True where crossings are of interest to anybody: the record is on, calls are counted or a fault is armed. Costs
  /// one plain load; everything that a crossing does beyond the operation itself happens only then.
  bool watched() const noexcept { return shared_->faults.watch().any(); }
  /// Switches the counting of calls on and off; recorded and faulted units count anyway.
  void count_calls(bool on) noexcept { shared_->faults.watch().set(Watch::COUNTED, on); }

  /// Where a closed interface is crossed: counts the call, records it with its arguments (JSON text), and tells what
  /// shall go wrong with it. A SLOW fault has been slept off when this returns.
  Fault cross(Point point, const std::string& args);

  /// The folder that holds the model ("/run/unit").
  const std::string& run_folder() const noexcept { return run_folder_; }

private:
  /// What the file holds.
  struct Shared {
    static constexpr std::uint64_t MAGIC = 0x31304C444D54494E;
    static constexpr std::uint32_t VERSION = 1;

    std::uint64_t magic = MAGIC;
    std::uint32_t version = VERSION;
    std::uint32_t size = sizeof(Shared);
    Board board;
    PowerSupply power_supply;
    Sensors sensors;
    Services services;
    Gui gui;
    Faults faults;
  };

  UnitModel(const std::string& path, Shared* shared);
  static void prepare(const std::string& path, const Fill& fill);
  static void* map(int descriptor, const std::string& path);

  Shared* shared_;
  std::string run_folder_;
  CallRecord record_;
  SysfsFiles sysfs_;
};

}  // namespace simulator::model
