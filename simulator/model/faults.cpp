#include "simulator/model/faults.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <string>

namespace simulator::model {
namespace {

/// "none, fail, slow"
std::string listed(FaultKinds kinds) {
  std::string names;
  for (const KindRow& each : FAULT_KINDS) {
    if (kinds.has(each.key)) {
      names += (names.empty() ? "" : ", ") + std::string(each.name);
    }
  }
  return names;
}

}  // namespace

void Faults::arm(Point point, const Fault& fault) {
  const PointRow& row = row_of(point);
  if (!row.kinds.has(fault.kind)) {
    throw std::invalid_argument(std::string(row.name) + ": admits " + listed(row.kinds) + ", not " +
                                std::string(name_of(fault.kind)));
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
