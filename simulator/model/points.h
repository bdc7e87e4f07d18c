#pragma once

#include <cstdint>
#include <optional>
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

/// A kind of fault at a point, described in FAULT_KINDS.
enum class FaultKind : std::uint32_t { NONE, FAIL, NO_REPLY, LATE, TWICE, SLOW, GARBAGE, COUNT };

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
};

/// A kind of fault and its number.
struct KindRow {
  FaultKind key;
  std::string_view name;  ///< "no_reply"
  std::string_view doc;
  std::string_view value = {};  ///< meaning of the number; empty: no number
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
};

/// Every point and every kind, in the order of their enumerators.
extern const memory::Table<Point, PointRow> POINTS;
extern const memory::Table<FaultKind, KindRow> FAULT_KINDS;

inline const PointRow& row_of(Point point) noexcept {
  return memory::row_of(POINTS, point);
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
inline std::optional<Point> point_named(std::string_view name) noexcept {
  return memory::named_in(POINTS, name);
}
inline std::optional<FaultKind> fault_kind_named(std::string_view name) noexcept {
  return memory::named_in(FAULT_KINDS, name);
}

}  // namespace simulator::model
