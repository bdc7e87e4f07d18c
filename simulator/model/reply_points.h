#pragma once

#include <optional>

#include "simulator/model/points.h"
#include "simulator/model/power_supply.h"

namespace simulator::model {

/// A reply's points: registration of its function, and request.
struct ReplyPoints {
  Point registration;
  Point request;
};

constexpr ReplyPoints points_of(Reply reply) noexcept {
  switch (reply) {
    case Reply::BATTERY_RELATIVE_STATE_OF_CHARGE:
      return {Point::SET_BATTERY_RELATIVE_STATE_OF_CHARGE_CALLBACK, Point::GET_BATTERY_RELATIVE_STATE_OF_CHARGE};
    case Reply::CHARGER_BATTERY_STATUS:
      return {Point::SET_CHARGER_BATTERY_STATUS_CALLBACK, Point::GET_CHARGER_BATTERY_STATUS};
    case Reply::SOFTWARE_VERSION_NUMBER:
      return {Point::SET_SOFTWARE_VERSION_NUMBER_CALLBACK, Point::GET_SOFTWARE_VERSION_NUMBER};
    case Reply::POWER_SUPPLY_TEMPERATURE:
      return {Point::SET_POWER_SUPPLY_TEMPERATURE_VALUE_CALLBACK, Point::GET_POWER_SUPPLY_TEMPERATURE_VALUE};
    case Reply::BATTERY_TEMPERATURE:
      return {Point::SET_BATTERY_TEMPERATURE_CALLBACK, Point::GET_BATTERY_TEMPERATURE};
    case Reply::BATTERY_AVERAGE_TIME_TO_EMPTY:
      return {Point::SET_BATTERY_AVERAGE_TIME_TO_EMPTY_CALLBACK, Point::GET_BATTERY_AVERAGE_TIME_TO_EMPTY};
    case Reply::BATTERY_RUN_TIME_TO_EMPTY:
      return {Point::SET_BATTERY_RUN_TIME_TO_EMPTY_CALLBACK, Point::GET_BATTERY_RUN_TIME_TO_EMPTY};
    case Reply::COUNT:
      break;
  }
  return {Point::COUNT, Point::COUNT};
}

/// The reply that is requested at the point; none if it is no request.
constexpr std::optional<Reply> reply_requested_at(Point point) noexcept {
  for (std::uint32_t reply = 0; reply < static_cast<std::uint32_t>(Reply::COUNT); ++reply) {
    if (points_of(static_cast<Reply>(reply)).request == point) {
      return static_cast<Reply>(reply);
    }
  }
  return std::nullopt;
}

}  // namespace simulator::model
