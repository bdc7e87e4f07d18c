#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/memory/shared_mutex.h"
#include "simulator/model/watch.h"

namespace simulator::model {

/// Every place where a closed interface is crossed. Names ("radalt.read") by name_of() and point_named().
enum class Point : std::uint32_t {
  RADALT_INIT,
  RADALT_READ,
  RADALT_WRITE,
  RADALT_LOCK_GET,
  RADALT_LOCK_PUT,
  PSDRIVER_OPEN,
  SET_BATTERY_RELATIVE_STATE_OF_CHARGE_CALLBACK,
  SET_CHARGER_BATTERY_STATUS_CALLBACK,
  SET_SOFTWARE_VERSION_NUMBER_CALLBACK,
  SET_POWER_SUPPLY_TEMPERATURE_VALUE_CALLBACK,
  SET_BATTERY_TEMPERATURE_CALLBACK,
  SET_BATTERY_AVERAGE_TIME_TO_EMPTY_CALLBACK,
  SET_BATTERY_RUN_TIME_TO_EMPTY_CALLBACK,
  SET_SWITCH_INTERRUPT_CALLBACK,
  GET_BATTERY_RELATIVE_STATE_OF_CHARGE,
  GET_CHARGER_BATTERY_STATUS,
  GET_SOFTWARE_VERSION_NUMBER,
  GET_POWER_SUPPLY_TEMPERATURE_VALUE,
  GET_BATTERY_TEMPERATURE,
  GET_BATTERY_AVERAGE_TIME_TO_EMPTY,
  GET_BATTERY_RUN_TIME_TO_EMPTY,
  SET_SYSTEM_LED_STATUS,
  SET_USER_INTERFACE_COMMUNICATION_STATUS,
  PSDRIVER_REPLY,      ///< recorded only: a reply is handed to its call-back
  PSDRIVER_INTERRUPT,  ///< recorded only: a switch interrupt is handed to its handler
  DDS_PARTICIPANT,     ///< fail: the process's participant stays null
  EVENTS_SEND,
  ORB_LOOKUP,
  LOCKER_TAKE,
  LOCKER_INIT_CORE,
  GUI_SHOW_DIALOG,
  GUI_SET_DIALOG_SIZE,
  EVERYBODY_GET_SHUTDOWN,
  EVERYBODY_SHUTDOWN_ALL,
  HW_ENUMERATE_SHUTDOWN_ENGINE,
  I2C_READ,
  COUNT
};

/// What goes wrong at a point.
enum class FaultKind : std::uint32_t {
  NONE,
  FAIL,      ///< the operation fails; value: the error number it fails with (0: EIO)
  NO_REPLY,  ///< requests and calls of services: the reply never comes
  LATE,      ///< requests: the reply comes `value` milliseconds later than it would
  TWICE,     ///< requests: the reply comes twice
  SLOW,      ///< the call itself takes `value` milliseconds longer
  GARBAGE,   ///< requests, reads, dialogs: `value` is delivered in place of the right one; GetShutdown: nil
  COUNT
};

/// One armed fault.
struct Fault {
  static constexpr std::uint32_t ALWAYS = 0;

  FaultKind kind = FaultKind::NONE;
  std::int32_t value = 0;        ///< see FaultKind
  std::uint32_t nth = 1;         ///< the first call that it hits, counted from 1 since it was armed
  std::uint32_t times = ALWAYS;  ///< how many calls it hits in a row; ALWAYS: every one from then on
};

std::string_view name_of(Point point) noexcept;
std::optional<Point> point_named(std::string_view name) noexcept;
std::string_view name_of(FaultKind kind) noexcept;  ///< "none", "fail", "no_reply", "late", "twice", "slow", "garbage"
std::optional<FaultKind> fault_kind_named(std::string_view name) noexcept;

/// True where a fault of that kind can be armed at that point.
bool admits(Point point, FaultKind kind) noexcept;

/// The unit's armed faults and its call counters. Lives in the unit's model; any thread of any process.
class Faults {
public:
  /// Arms the fault at the point in place of the one there, and starts counting calls for it anew. Kind NONE disarms.
  /// Throws std::invalid_argument where the point does not admit the kind.
  void arm(Point point, const Fault& fault);
  void disarm_all();
  Fault armed_at(Point point) const;

  /// Counts one call of the point and tells what goes wrong with it; kind NONE: nothing.
  Fault strike(Point point);

  /// Why crossings are of interest; kept up to date for the reason FAULTED.
  Watch& watch() noexcept { return watch_; }
  const Watch& watch() const noexcept { return watch_; }

  /// Calls of the point while the unit was watched.
  std::uint64_t calls(Point point) const noexcept;
  void forget_calls() noexcept;

private:
  struct Slot {
    Fault fault;
    std::uint64_t since_armed = 0;
    std::atomic<std::uint64_t> calls{0};
  };

  Slot& slot(Point point) noexcept { return slots_[static_cast<std::size_t>(point)]; }
  const Slot& slot(Point point) const noexcept { return slots_[static_cast<std::size_t>(point)]; }

  void update_watch() noexcept;

  mutable memory::SharedMutex mutex_;
  Watch watch_;
  std::array<Slot, static_cast<std::size_t>(Point::COUNT)> slots_;
};

}  // namespace simulator::model
