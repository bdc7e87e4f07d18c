#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

namespace dcps {

/// What a reader has received and nobody has taken yet, oldest first, and the notifications due for it. Thread-safe.
///
/// Cyclone folds a change of an instance's state into a sample that still waits to be taken; here each is an entry of
/// its own, as with OpenDDS.
class Arrivals {
public:
  /// `sample_size`: of one sample in memory, in bytes. `instance`: the handle that the reader's one instance goes by.
  Arrivals(std::size_t sample_size, DDS::InstanceHandle_t instance);

  using Clock = std::chrono::steady_clock;

  /// Samples then come at least `minimum_separation` apart. What comes too early is dropped; with `keep_latest` the
  /// latest of it comes once the separation is over.
  void set_filter(Clock::duration minimum_separation, bool keep_latest);

  /// Takes over all that Cyclone's reader holds. Where the filter now holds a sample back for the first time: when to
  /// call release_held().
  std::optional<Clock::time_point> collect(dds_entity_t reader);
  void release_held();

  /// Takes the oldest entry, collecting first when there is none. False: there is still none.
  bool take(dds_entity_t reader, void* sample, DDS::SampleInfo& info);

  /// True: notifications are due and nobody makes them; the caller now does, until next_notification() says false.
  bool begin_notifying();
  /// True: one is due, and the caller makes it.
  bool next_notification();

private:
  struct Entry {
    DDS::SampleInfo info;
    std::unique_ptr<std::byte[]> sample;
  };

  void collect_locked(dds_entity_t reader);
  void add(const dds_sample_info_t& info, const void* sample);
  bool passes_filter(Entry& entry);
  void add_folded_state_change(const dds_sample_info_t& last);

  const std::size_t sample_size_;
  const DDS::InstanceHandle_t instance_;
  std::mutex mutex_;
  std::deque<Entry> entries_;
  std::size_t due_ = 0;  ///< entries not yet notified of; at most as many as there are entries
  bool notifying_ = false;
  Clock::duration minimum_separation_{};
  bool keep_latest_ = false;
  std::optional<Clock::time_point> last_passed_;  ///< when the filter last let a sample pass
  std::optional<Entry> held_;                     ///< by the filter
};

}  // namespace dcps
