#include "tests/contract/power_supply_side.h"
#include "tests/contract/simulated_unit.h"

namespace contract {
namespace {

using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::Reply;

Point point_of(const std::string& operation) {
  const std::string name = operation == "psdriver" ? "psdriver.open" : "psdriver." + operation;
  return simulator::model::point_named(name).value();
}

class SimulatedPowerSupply final : public PowerSupplySide {
public:
  SimulatedPowerSupply() {
    unit_.faults().disarm_all();
    unit_.power_supply().set_reply_delay(0);
  }

  void answer(const std::string& request, int value) override {
    const auto first = static_cast<std::uint32_t>(Point::GET_BATTERY_RELATIVE_STATE_OF_CHARGE);
    unit_.power_supply().set_reply(static_cast<Reply>(static_cast<std::uint32_t>(point_of(request)) - first), value);
  }
  void fail_next(const std::string& operation) override { arm(operation, FaultKind::FAIL); }
  void swallow_next(const std::string& request) override { arm(request, FaultKind::NO_REPLY); }
  void raise_interrupt(int value) override { unit_.power_supply().raise_interrupt(value); }
  bool led_status_is(int status) override { return unit_.power_supply().led_status() == status; }
  bool communication_status_is(int status) override { return unit_.power_supply().communication_status() == status; }

private:
  void arm(const std::string& operation, FaultKind kind) {
    unit_.faults().arm(point_of(operation), Fault{kind, 0, 1, 1});
  }

  simulator::model::UnitModel& unit_ = simulated_unit();
};

}  // namespace

std::unique_ptr<PowerSupplySide> make_power_supply_side() {
  return std::make_unique<SimulatedPowerSupply>();
}

}  // namespace contract
