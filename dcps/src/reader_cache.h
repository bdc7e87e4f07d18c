#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include <dds/dds.h>

#include <dds/DdsDcpsInfrastructureC.h>

namespace dcps {

/// Cyclone's mask for what has not been notified.
constexpr uint32_t NOT_NOTIFIED = DDS_NOT_READ_SAMPLE_STATE | DDS_ANY_VIEW_STATE | DDS_ANY_INSTANCE_STATE;

/// Takes entries from the cache of a Cyclone reader and tells which of them have not been notified. Thread-safe.
///
/// Cyclone folds a change of the instance's state into a sample that waits; here the change is an entry of its own,
/// told apart when samples are taken. Cyclone's sample state "read" marks the samples that have been notified.
class ReaderCache {
public:
  /// `instance`: the handle of the reader's one instance.
  ReaderCache(std::size_t sample_size, DDS::InstanceHandle_t instance);

  /// Takes the oldest entry; `sample` is left alone if it has no data. Returns RETCODE_NO_DATA if there is none,
  /// RETCODE_ALREADY_DELETED if there is no such reader.
  DDS::ReturnCode_t take(dds_entity_t reader, void* sample, DDS::SampleInfo& info);

  /// True if an entry has not been notified; from then on it counts as notified.
  bool next_notification(dds_entity_t reader);

private:
  using Bytes = std::unique_ptr<std::byte[]>;

  /// The instance, as the entries so far show it.
  struct Instance {
    bool alive = false;
    dds_sample_info_t last{};  ///< of the last sample

    void update(const dds_sample_info_t& sample);
    /// The instance's state between the last sample and this one.
    dds_instance_state_t state_before(const dds_sample_info_t& sample) const;
    /// True for the end of this life if a message has brought it, not the writer's disappearance.
    bool ends_by(const dds_sample_info_t& change) const;
  };

  dds_return_t fetch(dds_entity_t reader);
  void add_change(dds_instance_state_t state);
  DDS::SampleInfo give_next(dds_entity_t reader, void* sample);

  const std::size_t sample_size_;
  const DDS::InstanceHandle_t instance_;
  std::mutex mutex_;  ///< guards what follows
  Instance taken_;
  Instance notified_;
  std::vector<dds_sample_info_t> fetched_;  ///< entries taken from Cyclone, in order: a change, a sample, or both
  Bytes fetched_sample_;
  std::size_t due_ = 0;  ///< entries in fetched_ that have not been notified
  Bytes read_sample_;
};

}  // namespace dcps
