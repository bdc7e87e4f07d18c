#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/memory/names.h"

namespace simulator::model {

/// The points at which closed interfaces are crossed.
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
  PSDRIVER_REPLY,
  PSDRIVER_INTERRUPT,
  DDS_PARTICIPANT,
  DDS_WRITE,
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
  SHELL_IFCONFIG,
  SHELL_MOUNT,
  SHELL_UDHCPC,
  SHELL_SHUTDOWN,
  FILE_FPGA_VER,
  FILE_BOARD_REV,
  FILE_CPLD_VER,
  FILE_CELSIUS,
  FILE_MAX_BRIGHTNESS,
  FILE_BRIGHTNESS,
  FILE_BL_POWER,
  FILE_MIC284,
  COUNT
};

/// The sort of interface that is crossed at a point, described in CROSSINGS.
enum class Crossing : std::uint32_t { DRIVER, CORBA, DDS, COMMAND, FILE, COUNT };

/// A kind of fault at a point, described in FAULT_KINDS.
enum class FaultKind : std::uint32_t { NONE, FAIL, NO_REPLY, LATE, TWICE, SLOW, GARBAGE, STUCK, COUNT };

/// A set of kinds; NONE is in every one.
class FaultKinds {
public:
  constexpr FaultKinds(FaultKind kind) noexcept : bits_(bit(FaultKind::NONE) | bit(kind)) {}

  constexpr bool has(FaultKind kind) const noexcept { return (bits_ & bit(kind)) != 0; }
  constexpr FaultKinds operator|(FaultKinds other) const noexcept {
    FaultKinds both = other;
    both.bits_ |= bits_;
    return both;
  }

private:
  static constexpr std::uint32_t bit(FaultKind kind) noexcept { return 1u << static_cast<std::uint32_t>(kind); }

  std::uint32_t bits_;
};

/// A point and the faults that it admits.
struct PointRow {
  Point key;
  std::string_view name;  ///< "radalt.read"
  FaultKinds kinds;
  std::string_view doc;  ///< what crosses
  Crossing crossing = Crossing::DRIVER;
};

/// The number that goes with a kind of fault.
struct FaultNumber {
  std::string_view meaning = {};  ///< empty: there is no number
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
};

/// A sort of interface.
struct CrossingRow {
  Crossing key;
  std::string_view name;   ///< "library"
  std::string_view doc;    ///< "call of a driver or the framework"
  FaultNumber fail;        ///< the number of FAIL
  bool is_counted = true;  ///< whether single crossings are seen, counted and hit; else the fault lasts while armed
};

/// A kind of fault and its number.
struct KindRow {
  FaultKind key;
  std::string_view name;  ///< "no_reply"
  std::string_view doc;
  FaultNumber number = {};  ///< of FAIL: see CrossingRow::fail
};

/// Every point, sort of interface and kind, in the order of their enumerators.
extern const memory::Table<Point, PointRow> POINTS;
extern const memory::Table<Crossing, CrossingRow> CROSSINGS;
extern const memory::Table<FaultKind, KindRow> FAULT_KINDS;

inline const PointRow& row_of(Point point) noexcept {
  return memory::row_of(POINTS, point);
}
inline const CrossingRow& row_of(Crossing crossing) noexcept {
  return memory::row_of(CROSSINGS, crossing);
}
inline const KindRow& row_of(FaultKind kind) noexcept {
  return memory::row_of(FAULT_KINDS, kind);
}
inline std::string_view name_of(Point point) noexcept {
  return row_of(point).name;
}
inline std::string_view name_of(FaultKind kind) noexcept {
  return row_of(kind).name;
}
/// The number of that kind of fault at the point.
inline const FaultNumber& number_of(Point point, FaultKind kind) noexcept {
  return kind == FaultKind::FAIL ? row_of(row_of(point).crossing).fail : row_of(kind).number;
}
/// "none, fail, slow"
std::string names_of(FaultKinds kinds);
inline std::optional<Point> point_named(std::string_view name) noexcept {
  return memory::named_in(POINTS, name);
}
inline std::optional<FaultKind> fault_kind_named(std::string_view name) noexcept {
  return memory::named_in(FAULT_KINDS, name);
}

}  // namespace simulator::model
