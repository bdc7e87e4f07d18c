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
  std::uint32_t nth = 1;         ///< first call hit, counted from 1 since arming
  std::uint32_t times = ALWAYS;  ///< number of consecutive calls hit; ALWAYS: no limit
};

/// The unit's armed faults and call counters. Part of the unit's model; any thread of any process.
class Faults {
public:
  /// Arms the fault at the point, replacing any other, and restarts its call count. Kind NONE disarms. Throws
  /// std::invalid_argument, listing the admitted kinds, if the point does not admit the kind.
  void arm(Point point, const Fault& fault);
  void disarm_all();
  Fault armed_at(Point point) const;

  /// Counts one call of the point and returns its fault; kind NONE: no fault.
  Fault strike(Point point);

  /// The reasons for watching crossings; FAULTED is updated here.
  Watch& watch() noexcept { return watch_; }
  const Watch& watch() const noexcept { return watch_; }

  /// Number of calls of the point while the unit was watched.
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
