#include <psdriver.h>

#include "simulator/model/reply_points.h"
#include "tests/doubles/heard.h"
#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {
namespace {

using doubles::hear;
using doubles::heard;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::Reply;

constexpr char DEVICE[] = "/dev/null";

/// The operations of one kind of reply, in the order of Reply.
struct Operations {
  void (psdriver::*request)();
  void (psdriver::*registration)(psdriver::Callback);
};
constexpr Operations OPERATIONS[] = {
    {&psdriver::GetBatteryRelativeStateOfCharge, &psdriver::SetBatteryRelativeStateOfChargeCallback},
    {&psdriver::GetCharger_BatteryStatus, &psdriver::SetCharger_BatteryStatusCallback},
    {&psdriver::GetSoftwareVersionNumber, &psdriver::SetSoftwareVersionNumberCallback},
    {&psdriver::GetPowerSupplyTemperatureValue, &psdriver::SetPowerSupplyTemperatureValueCallback},
    {&psdriver::GetBatteryTemperature, &psdriver::SetBatteryTemperatureCallback},
    {&psdriver::GetBatteryAverageTimeToEmpty, &psdriver::SetBatteryAverageTimeToEmptyCallback},
    {&psdriver::GetBatteryRunTimeToEmpty, &psdriver::SetBatteryRunTimeToEmptyCallback}};

const Operations& operations_of(Reply reply) {
  return OPERATIONS[static_cast<std::size_t>(reply)];
}

/// Whether the operation throws.
template <typename Operation>
bool fails(Operation operation) {
  try {
    operation();
    return false;
  } catch (const psdriverError&) {
    return true;
  }
}

/// Requests a reply, and then one of another kind, which shows what has come before it.
class RequestProbe final : public Probe {
public:
  RequestProbe(PairsUnit& unit, Reply reply) : unit_(unit), reply_(reply) {
    heard.clear();
    unit_.model().power_supply().set_reply(other_, 0);
    (driver_.*operations_of(reply_).registration)(hear<'r'>);
    (driver_.*operations_of(other_).registration)(hear<'o'>);
  }

  void set_value(int value) override { unit_.model().power_supply().set_reply(reply_, value); }

  Outcome call(FaultKind kind) override {
    heard.clear();
    Outcome outcome;
    outcome.failed = fails([this] { (driver_.*operations_of(reply_).request)(); });
    (driver_.*operations_of(other_).request)();
    const bool is_answered = kind != FaultKind::FAIL && kind != FaultKind::NO_REPLY;
    for (const auto& [which, value] : heard.at_least(kind == FaultKind::TWICE ? 3 : is_answered ? 2 : 1)) {
      outcome.delivered.push_back(which == 'o' ? "other" : std::to_string(value));
    }
    return outcome;
  }

private:
  PairsUnit& unit_;
  const Reply reply_;
  const Reply other_ =
      reply_ == Reply::CHARGER_BATTERY_STATUS ? Reply::BATTERY_TEMPERATURE : Reply::CHARGER_BATTERY_STATUS;
  psdriver driver_{DEVICE};
};

/// A call that delivers nothing.
class PlainProbe final : public Probe {
public:
  explicit PlainProbe(std::function<void(psdriver&)> operation) : operation_(std::move(operation)) {}

  Outcome call(FaultKind) override {
    return {fails([this] { operation_(driver_); }), {}};
  }

private:
  std::function<void(psdriver&)> operation_;
  psdriver driver_{DEVICE};
};

std::unique_ptr<Probe> plain(std::function<void(psdriver&)> operation) {
  return std::make_unique<PlainProbe>(std::move(operation));
}

}  // namespace

std::unique_ptr<Probe> make_power_supply_probe(PairsUnit& unit, Point point) {
  for (std::uint32_t each = 0; each < static_cast<std::uint32_t>(Reply::COUNT); ++each) {
    const auto reply = static_cast<Reply>(each);
    if (points_of(reply).request == point) {
      return std::make_unique<RequestProbe>(unit, reply);
    }
    if (points_of(reply).registration == point) {
      return plain([reply](psdriver& driver) { (driver.*operations_of(reply).registration)(hear<'r'>); });
    }
  }
  int status = 1;
  switch (point) {
    case Point::PSDRIVER_OPEN:
      return plain([](psdriver&) { const psdriver opened(DEVICE); });
    case Point::SET_SWITCH_INTERRUPT_CALLBACK:
      return plain([](psdriver& driver) { driver.SetSwitchInterruptCallback(hear<'i'>); });
    case Point::SET_SYSTEM_LED_STATUS:
      return plain([status](psdriver& driver) mutable { driver.SetSystemLEDStatus(status, false); });
    case Point::SET_USER_INTERFACE_COMMUNICATION_STATUS:
      return plain([status](psdriver& driver) mutable { driver.SetUserInterface_CommunicationStatus(status, false); });
    default:
      return nullptr;
  }
}

}  // namespace fault_pairs
