#include "simulator/model/faults.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>

#include "simulator/memory/names.h"

namespace simulator::model {
namespace {

constexpr memory::Names<Point> POINT_NAMES{"radalt.init",
                                           "radalt.read",
                                           "radalt.write",
                                           "radalt.lock_get",
                                           "radalt.lock_put",
                                           "psdriver.open",
                                           "psdriver.SetBatteryRelativeStateOfChargeCallback",
                                           "psdriver.SetCharger_BatteryStatusCallback",
                                           "psdriver.SetSoftwareVersionNumberCallback",
                                           "psdriver.SetPowerSupplyTemperatureValueCallback",
                                           "psdriver.SetBatteryTemperatureCallback",
                                           "psdriver.SetBatteryAverageTimeToEmptyCallback",
                                           "psdriver.SetBatteryRunTimeToEmptyCallback",
                                           "psdriver.SetSwitchInterruptCallback",
                                           "psdriver.GetBatteryRelativeStateOfCharge",
                                           "psdriver.GetCharger_BatteryStatus",
                                           "psdriver.GetSoftwareVersionNumber",
                                           "psdriver.GetPowerSupplyTemperatureValue",
                                           "psdriver.GetBatteryTemperature",
                                           "psdriver.GetBatteryAverageTimeToEmpty",
                                           "psdriver.GetBatteryRunTimeToEmpty",
                                           "psdriver.SetSystemLEDStatus",
                                           "psdriver.SetUserInterface_CommunicationStatus",
                                           "psdriver.reply",
                                           "psdriver.interrupt",
                                           "dds.participant",
                                           "events.send",
                                           "orb.lookup",
                                           "locker.take",
                                           "locker.Init_core",
                                           "gui.ShowDialog",
                                           "gui.SetDialogSize",
                                           "everybody_engine.GetShutdown",
                                           "everybody_engine.ShutdownAll",
                                           "hw_enumerate.ShutdownEngine",
                                           "i2c_read"};
constexpr memory::Names<FaultKind> KIND_NAMES{"none", "fail", "no_reply", "late", "twice", "slow", "garbage"};

bool is_request(Point point) noexcept {
  return point >= Point::GET_BATTERY_RELATIVE_STATE_OF_CHARGE && point <= Point::GET_BATTERY_RUN_TIME_TO_EMPTY;
}

bool is_remote(Point point) noexcept {
  return point >= Point::GUI_SHOW_DIALOG && point <= Point::HW_ENUMERATE_SHUTDOWN_ENGINE;
}

bool only_recorded(Point point) noexcept {
  return point == Point::PSDRIVER_REPLY || point == Point::PSDRIVER_INTERRUPT;
}

}  // namespace

std::string_view name_of(Point point) noexcept {
  return memory::name_in(POINT_NAMES, point);
}

std::optional<Point> point_named(std::string_view name) noexcept {
  return memory::named_in<Point>(POINT_NAMES, name);
}

std::string_view name_of(FaultKind kind) noexcept {
  return memory::name_in(KIND_NAMES, kind);
}

std::optional<FaultKind> fault_kind_named(std::string_view name) noexcept {
  return memory::named_in<FaultKind>(KIND_NAMES, name);
}

bool admits(Point point, FaultKind kind) noexcept {
  switch (kind) {
    case FaultKind::NONE:
      return true;
    case FaultKind::FAIL:
    case FaultKind::SLOW:
      return !only_recorded(point);
    case FaultKind::GARBAGE:
      return is_request(point) || point == Point::RADALT_READ || point == Point::I2C_READ ||
             point == Point::GUI_SHOW_DIALOG || point == Point::EVERYBODY_GET_SHUTDOWN;
    case FaultKind::NO_REPLY:
      return is_request(point) || is_remote(point);
    default:
      return is_request(point);
  }
}

void Faults::arm(Point point, const Fault& fault) {
  if (!admits(point, fault.kind)) {
    throw std::invalid_argument(std::string(name_of(point)) + ": no fault of kind " + std::string(name_of(fault.kind)));
  }
  const std::lock_guard guard(mutex_);
  slot(point).fault = fault;
  slot(point).since_armed = 0;
  update_watch();
}

void Faults::disarm_all() {
  const std::lock_guard guard(mutex_);
  for (auto& each : slots_) {
    each.fault = Fault{};
  }
  update_watch();
}

Fault Faults::armed_at(Point point) const {
  const std::lock_guard guard(mutex_);
  return slot(point).fault;
}

void Faults::update_watch() noexcept {
  const bool armed =
      std::any_of(slots_.begin(), slots_.end(), [](const Slot& each) { return each.fault.kind != FaultKind::NONE; });
  watch_.set(Watch::FAULTED, armed);
}

Fault Faults::strike(Point point) {
  Slot& struck = slot(point);
  struck.calls.fetch_add(1);
  if (!watch_.has(Watch::FAULTED)) {
    return {};
  }
  const std::lock_guard guard(mutex_);
  const Fault& fault = struck.fault;
  ++struck.since_armed;
  const bool begun = struck.since_armed >= fault.nth;
  const bool over = fault.times != Fault::ALWAYS && struck.since_armed >= std::uint64_t{fault.nth} + fault.times;
  return begun && !over ? fault : Fault{};
}

std::uint64_t Faults::calls(Point point) const noexcept {
  return slot(point).calls.load();
}

void Faults::forget_calls() noexcept {
  for (auto& each : slots_) {
    each.calls.store(0);
  }
}

}  // namespace simulator::model
