#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>

#include "simulator/memory/shared_mutex.h"
#include "simulator/model/points.h"
#include "simulator/model/watch.h"

namespace simulator::model {

/// One armed fault. It hits the `nth` call since it was armed and every `every`th call from then on, each with
/// `probability`, until it has hit `times` times. At a file, which has no calls, it lasts while it is armed.
struct Fault {
  static constexpr std::uint32_t ALWAYS = 0;
  static constexpr std::uint32_t CERTAIN = 100;

  FaultKind kind = FaultKind::NONE;
  std::int32_t value = 0;                            ///< the number that the kind carries
  std::uint32_t nth = 1;                             ///< first call hit, counted from 1 since arming
  std::uint32_t times = ALWAYS;                      ///< number of hits; ALWAYS: no limit
  std::uint32_t every = 1;                           ///< distance between the calls hit, 1 or more
  std::uint32_t probability = CERTAIN;               ///< per cent, 1 to 100
  std::optional<std::uint32_t> seed = std::nullopt;  ///< of the pseudo-random numbers; none: 0
  bool draws = false;                                ///< GARBAGE: each hit draws its value pseudo-randomly
};

/// The wrong value to deliver in place of `right` by a GARBAGE fault that has hit. A drawn value differs from `right`.
std::int32_t wrong_value(const Fault& fault, std::int32_t right) noexcept;
/// The wrong text of a file by a GARBAGE fault: its value as a line, or a line of eight pseudo-random characters.
std::string wrong_text(const Fault& fault);

/// The unit's armed faults and call counters. Part of the unit's model; any thread of any process. UnitFaults arms them
/// with everything that arming takes.
class Faults {
public:
  /// Throws std::invalid_argument if the point does not admit the fault: with the admitted kinds, or the parameter.
  static void check(Point point, const Fault& fault);
  /// Arms the fault at the point, replacing any other, and restarts its call count. Kind NONE disarms. Throws as
  /// check() does.
  void arm(Point point, const Fault& fault);
  Fault armed_at(Point point) const;

  /// Counts one call of the point and returns the fault that hits it, its value drawn if it draws; kind NONE: no fault.
  Fault strike(Point point);

  /// The value that a STUCK fault delivers at the point: that of the last hold() or delivered().
  std::int32_t held(Point point) const noexcept { return slot(point).held.load(); }
  void hold(Point point, std::int32_t value) noexcept { slot(point).held.store(value); }
  /// Whether a STUCK fault is armed at the point: then calls that it does not hit report what they deliver.
  bool holds(Point point) const;
  /// Reports a value delivered without a fault.
  void delivered(Point point, std::int32_t value);

  /// The reasons for watching crossings; FAULTED is updated here.
  Watch& watch() noexcept { return watch_; }
  const Watch& watch() const noexcept { return watch_; }

  /// Number of calls of the point while the unit was watched, and of calls hit by a fault. 0 for files.
  std::uint64_t calls(Point point) const noexcept { return slot(point).calls.load(); }
  std::uint64_t hits(Point point) const noexcept { return slot(point).hits.load(); }
  void forget_calls() noexcept;

private:
  struct Slot {
    Fault fault;
    std::uint64_t calls_since_armed = 0;
    std::uint64_t hits_since_armed = 0;
    std::uint64_t random = 0;  ///< state of the pseudo-random numbers
    std::atomic<std::int32_t> held{0};
    std::atomic<std::uint64_t> calls{0};
    std::atomic<std::uint64_t> hits{0};
  };

  Slot& slot(Point point) noexcept { return slots_[static_cast<std::size_t>(point)]; }
  const Slot& slot(Point point) const noexcept { return slots_[static_cast<std::size_t>(point)]; }

  static bool hits_next_call(Slot& slot);
  void update_watch() noexcept;

  mutable memory::SharedMutex mutex_;
  Watch watch_;
  std::array<Slot, static_cast<std::size_t>(Point::COUNT)> slots_;
};

}  // namespace simulator::model
