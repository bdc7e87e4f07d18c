#include "simulator/model/unit_faults.h"

#include "simulator/model/reply_points.h"
#include "simulator/model/unit_model.h"

namespace simulator::model {

void UnitFaults::arm(Point point, const Fault& fault) {
  if (row_of(point).crossing == Crossing::FILE) {
    unit_.files().arm(point, fault);
    return;
  }
  Faults::check(point, fault);
  if (fault.kind == FaultKind::STUCK) {
    hold(point);
  }
  unit_.crossings().arm(point, fault);
}

void UnitFaults::hold(Point point) {
  if (point == Point::RADALT_READ) {
    unit_.held_board().copy_shown(unit_.board());
  } else if (point == Point::I2C_READ) {
    unit_.crossings().hold(point, static_cast<std::int32_t>(unit_.sensors().mic284()));
  } else if (const std::optional<Reply> reply = reply_requested_at(point)) {
    unit_.crossings().hold(point, unit_.power_supply().reply(*reply));
  }
}

void UnitFaults::disarm_all() {
  for (const PointRow& row : POINTS) {
    if (armed_at(row.key).kind != FaultKind::NONE) {
      arm(row.key, Fault{});
    }
  }
}

Fault UnitFaults::armed_at(Point point) const {
  return unit_.crossings().armed_at(point);
}

std::uint64_t UnitFaults::calls(Point point) const noexcept {
  return unit_.crossings().calls(point);
}

std::uint64_t UnitFaults::hits(Point point) const noexcept {
  return unit_.crossings().hits(point);
}

void UnitFaults::forget_calls() noexcept {
  unit_.crossings().forget_calls();
}

}  // namespace simulator::model
