// Faults and the counts of crossings.

#include "simulator/agent/verbs.h"
#include "simulator/settings/fault_text.h"

namespace simulator::agent {
namespace {

using model::UnitModel;

Json list(UnitModel& unit) {
  Json rows = Json::array();
  for (const model::PointRow& row : model::POINTS) {
    Json kinds = Json::array();
    for (const model::KindRow& kind : model::FAULT_KINDS) {
      if (row.kinds.has(kind.key) && kind.key != model::FaultKind::NONE) {
        kinds.push_back(kind.name);
      }
    }
    rows.push_back({{"setting", kinds.empty() ? Json() : Json("faults." + std::string(row.name))},
                    {"point", row.name},
                    {"doc", row.doc},
                    {"kinds", kinds},
                    {"armed", settings::text_of(unit.faults().armed_at(row.key))},
                    {"calls", model::row_of(row.crossing).is_counted ? Json(unit.faults().calls(row.key)) : Json()},
                    {"hits", model::row_of(row.crossing).is_counted ? Json(unit.faults().hits(row.key)) : Json()}});
  }
  return {{"faults", rows}};
}

Json clear(UnitModel& unit) {
  int armed = 0;
  for (const model::PointRow& row : model::POINTS) {
    armed += unit.faults().armed_at(row.key).kind == model::FaultKind::NONE ? 0 : 1;
  }
  unit.faults().disarm_all();
  return {{"disarmed", armed}};
}

Json count(const Arguments& with, UnitModel& unit) {
  const bool on = with.flag("on");
  if (with.flag("reset", false)) {
    unit.faults().forget_calls();
  }
  unit.count_calls(on);
  return {{"on", on}};
}

}  // namespace

void add_fault_verbs(Verbs& verbs, UnitModel& unit) {
  verbs["faults.list"] = [&unit](const Arguments&) { return list(unit); };
  verbs["faults.clear"] = [&unit](const Arguments&) { return clear(unit); };
  verbs["counting.set"] = [&unit](const Arguments& with) { return count(with, unit); };
}

}  // namespace simulator::agent
