// Switch interrupts of the power-supply controller, and the unit's services.

#include <cstdint>

#include "simulator/agent/refusal.h"
#include "simulator/agent/verbs.h"

namespace simulator::agent {
namespace {

using model::UnitModel;

constexpr std::chrono::milliseconds DAY{86'400'000};

std::uint64_t raised(UnitModel& unit, std::int32_t value) {
  try {
    return unit.power_supply().raise_interrupt(value);
  } catch (const model::InterruptsFull& full) {
    throw Refusal(CONFLICT, full.what());
  }
}

Json raise(const Arguments& with, UnitModel& unit) {
  const std::int64_t value = with.number("value", INT32_MIN, UINT32_MAX);
  const bool wait = with.flag("wait", false);
  const auto timeout = with.timeout();
  const std::uint64_t number = raised(unit, static_cast<std::int32_t>(static_cast<std::uint32_t>(value)));
  Json handled;
  if (wait) {
    handled = unit.power_supply().wait_interrupt_handled(number, timeout.value_or(DAY));
  }
  return {{"number", number}, {"handled", handled}};
}

}  // namespace

void add_power_verbs(Verbs& verbs, UnitModel& unit) {
  verbs["interrupts.raise"] = [&unit](const Arguments& with) { return raise(with, unit); };
  verbs["interrupts.handled"] = [&unit](const Arguments& with) -> Json {
    const auto number = static_cast<std::uint64_t>(with.number("number", 1, INT64_MAX));
    return {{"number", number},
            {"handled", unit.power_supply().wait_interrupt_handled(
                            number, with.timeout().value_or(std::chrono::milliseconds(0)))}};
  };
  verbs["services.applied"] = [&unit](const Arguments& with) -> Json {
    return {{"applied", unit.services().wait_applied(with.timeout().value_or(std::chrono::milliseconds(0)))}};
  };
}

}  // namespace simulator::agent
