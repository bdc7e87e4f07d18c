#include "simulator/model/faults.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <string>

namespace simulator::model {
namespace {

/// The next number of the sequence that starts with a seed as its state (SplitMix64).
std::uint64_t next_random(std::uint64_t& state) noexcept {
  state += 0x9E3779B97F4A7C15u;
  std::uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
  return mixed ^ (mixed >> 31);
}

[[noreturn]] void refuse(const PointRow& row, const std::string& why) {
  throw std::invalid_argument(std::string(row.name) + ": " + why);
}

}  // namespace

std::int32_t wrong_value(const Fault& fault, std::int32_t right) noexcept {
  return fault.draws && fault.value == right ? right ^ 1 : fault.value;
}

std::string wrong_text(const Fault& fault) {
  if (!fault.draws) {
    return std::to_string(fault.value) + "\n";
  }
  constexpr std::string_view CHARACTERS = "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ#?";
  std::uint64_t state = fault.seed.value_or(0);
  std::string text;
  while (text.size() < 8) {
    text += CHARACTERS[next_random(state) % CHARACTERS.size()];
  }
  return text + "\n";
}

void Faults::check(Point point, const Fault& fault) {
  const PointRow& row = row_of(point);
  if (!row.kinds.has(fault.kind)) {
    refuse(row, "admits " + names_of(row.kinds) + ", not " + std::string(name_of(fault.kind)));
  }
  const Fault usual;
  if (fault.nth == 0 || fault.every == 0) {
    refuse(row, "\"nth\" and \"every\" start at 1");
  }
  if (fault.probability == 0 || fault.probability > Fault::CERTAIN) {
    refuse(row, "\"probability\" is 1 to 100 per cent");
  }
  const bool lasts = fault.nth == usual.nth && fault.times == usual.times && fault.every == usual.every &&
                     fault.probability == usual.probability;
  if (!row_of(row.crossing).is_counted && !lasts) {
    refuse(row, "a file has no \"nth\", \"times\", \"every\" or \"probability\"; its fault lasts while it is armed");
  }
}

void Faults::arm(Point point, const Fault& fault) {
  check(point, fault);
  const std::lock_guard guard(mutex_);
  Slot& armed = slot(point);
  armed.fault = fault;
  armed.calls_since_armed = 0;
  armed.hits_since_armed = 0;
  armed.random = fault.seed.value_or(0);
  update_watch();
}

Fault Faults::armed_at(Point point) const {
  const std::lock_guard guard(mutex_);
  return slot(point).fault;
}

void Faults::update_watch() noexcept {
  bool armed = false;
  for (const PointRow& row : POINTS) {
    armed = armed || (row_of(row.crossing).is_counted && slot(row.key).fault.kind != FaultKind::NONE);
  }
  watch_.set(Watch::FAULTED, armed);
}

bool Faults::hits_next_call(Slot& slot) {
  const Fault& fault = slot.fault;
  const std::uint64_t call = ++slot.calls_since_armed;
  const bool over = fault.times != Fault::ALWAYS && slot.hits_since_armed >= fault.times;
  if (fault.kind == FaultKind::NONE || call < fault.nth || (call - fault.nth) % fault.every != 0 || over) {
    return false;
  }
  return fault.probability == Fault::CERTAIN || next_random(slot.random) % Fault::CERTAIN < fault.probability;
}

Fault Faults::strike(Point point) {
  Slot& struck = slot(point);
  struck.calls.fetch_add(1);
  if (!watch_.has(Watch::FAULTED)) {
    return {};
  }
  const std::lock_guard guard(mutex_);
  if (!hits_next_call(struck)) {
    return {};
  }
  ++struck.hits_since_armed;
  struck.hits.fetch_add(1);
  Fault fault = struck.fault;
  if (fault.draws) {
    fault.value = static_cast<std::int32_t>(next_random(struck.random));
  }
  return fault;
}

bool Faults::holds(Point point) const {
  return watch_.has(Watch::FAULTED) && armed_at(point).kind == FaultKind::STUCK;
}

void Faults::delivered(Point point, std::int32_t value) {
  if (holds(point)) {
    hold(point, value);
  }
}

void Faults::forget_calls() noexcept {
  for (auto& each : slots_) {
    each.calls.store(0);
    each.hits.store(0);
  }
}

}  // namespace simulator::model
