#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "simulator/memory/shared_mutex.h"
#include "simulator/model/points.h"
#include "simulator/model/watch.h"

namespace simulator::model {

/// One armed fault.
struct Fault {
  static constexpr std::uint32_t ALWAYS = 0;

  FaultKind kind = FaultKind::NONE;
  std::int32_t value = 0;        ///< the number that the kind carries
  std::uint32_t nth = 1;         ///< the first call that it hits, counted from 1 since it was armed
  std::uint32_t times = ALWAYS;  ///< how many calls it hits in a row; ALWAYS: every one from then on
};

/// The unit's armed faults and its call counters. Lives in the unit's model; any thread of any process.
class Faults {
public:
  /// Arms the fault at the point in place of the one there, and starts counting calls for it anew. Kind NONE disarms.
  /// Throws std::invalid_argument if the point does not admit the kind; it names those that it admits.
  void arm(Point point, const Fault& fault);
  void disarm_all();
  Fault armed_at(Point point) const;

  /// Counts one call of the point and tells what goes wrong with it; kind NONE: nothing.
  Fault strike(Point point);

  /// Why crossings are of interest; kept up to date for the reason FAULTED.
  Watch& watch() noexcept { return watch_; }
  const Watch& watch() const noexcept { return watch_; }

  /// Calls of the point while the unit was watched.
  std::uint64_t calls(Point point) const noexcept;
  void forget_calls() noexcept;

private:
  struct Slot {
    Fault fault;
    std::uint64_t since_armed = 0;
    std::atomic<std::uint64_t> calls{0};
  };

  Slot& slot(Point point) noexcept { return slots_[static_cast<std::size_t>(point)]; }
  const Slot& slot(Point point) const noexcept { return slots_[static_cast<std::size_t>(point)]; }

  void update_watch() noexcept;

  mutable memory::SharedMutex mutex_;
  Watch watch_;
  std::array<Slot, static_cast<std::size_t>(Point::COUNT)> slots_;
};

}  // namespace simulator::model
