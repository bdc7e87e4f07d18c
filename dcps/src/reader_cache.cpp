#include "dcps/src/reader_cache.h"

#include <algorithm>
#include <cstring>

#include "dcps/src/statuses.h"

namespace dcps {

namespace {

DDS::InstanceStateKind to_dcps(dds_instance_state_t state) {
  switch (state) {
    case DDS_IST_NOT_ALIVE_DISPOSED:
      return DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE;
    case DDS_IST_NOT_ALIVE_NO_WRITERS:
      return DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE;
    default:
      return DDS::ALIVE_INSTANCE_STATE;
  }
}

DDS::SampleInfo to_dcps(const dds_sample_info_t& info, bool is_new, DDS::InstanceHandle_t instance) {
  DDS::SampleInfo converted{};
  converted.sample_state = DDS::NOT_READ_SAMPLE_STATE;
  converted.view_state = is_new ? DDS::NEW_VIEW_STATE : DDS::NOT_NEW_VIEW_STATE;
  converted.instance_state = to_dcps(info.instance_state);
  converted.source_timestamp = dcps::to_dcps(info.source_timestamp);
  converted.instance_handle = instance;
  converted.disposed_generation_count = static_cast<CORBA::Long>(info.disposed_generation_count);
  converted.no_writers_generation_count = static_cast<CORBA::Long>(info.no_writers_generation_count);
  converted.valid_data = info.valid_data;
  return converted;
}

}  // namespace

void ReaderCache::Instance::update(const dds_sample_info_t& sample) {
  alive = true;
  last = sample;
}

dds_instance_state_t ReaderCache::Instance::state_before(const dds_sample_info_t& sample) const {
  if (alive && sample.disposed_generation_count != last.disposed_generation_count) {
    return DDS_IST_NOT_ALIVE_DISPOSED;
  }
  if (alive && sample.no_writers_generation_count != last.no_writers_generation_count) {
    return DDS_IST_NOT_ALIVE_NO_WRITERS;
  }
  return DDS_IST_ALIVE;
}

bool ReaderCache::Instance::ends_by(const dds_sample_info_t& change) const {
  // Without a message, the change has the time of the last sample.
  return alive && change.source_timestamp != last.source_timestamp;
}

ReaderCache::ReaderCache(std::size_t sample_size, DDS::InstanceHandle_t instance)
    : sample_size_(sample_size),
      instance_(instance),
      fetched_sample_(std::make_unique<std::byte[]>(sample_size)),
      read_sample_(std::make_unique<std::byte[]>(sample_size)) {}

DDS::ReturnCode_t ReaderCache::take(dds_entity_t reader, void* sample, DDS::SampleInfo& info) {
  const std::lock_guard lock(mutex_);
  if (fetched_.empty() && fetch(reader) < 0) {
    return DDS::RETCODE_ALREADY_DELETED;
  }
  if (fetched_.empty()) {
    return DDS::RETCODE_NO_DATA;
  }
  info = give_next(reader, sample);
  return DDS::RETCODE_OK;
}

/// Returns Cyclone's result of the last attempt to take.
dds_return_t ReaderCache::fetch(dds_entity_t reader) {
  void* place = fetched_sample_.get();
  dds_sample_info_t entry;
  dds_return_t count = 0;
  while (fetched_.empty() && (count = dds_take(reader, &place, &entry, 1, 1)) == 1) {
    if (entry.valid_data) {
      add_change(taken_.state_before(entry));
    } else if (!taken_.ends_by(entry)) {
      taken_.alive = false;
      continue;
    }
    fetched_.push_back(entry);
    due_ += entry.sample_state == DDS_SST_NOT_READ ? 1 : 0;
  }
  return count;
}

void ReaderCache::add_change(dds_instance_state_t state) {
  if (state == DDS_IST_ALIVE) {
    return;
  }
  fetched_.push_back(taken_.last);
  fetched_.back().valid_data = false;
  fetched_.back().instance_state = state;
  ++due_;
}

DDS::SampleInfo ReaderCache::give_next(dds_entity_t reader, void* sample) {
  const dds_sample_info_t next = fetched_.front();
  fetched_.erase(fetched_.begin());
  const bool starts_life = next.valid_data && !taken_.alive;
  taken_.alive = false;
  if (next.valid_data) {
    std::memcpy(sample, fetched_sample_.get(), sample_size_);
    taken_.update(next);
  }
  if (next.valid_data && next.instance_state != DDS_IST_ALIVE) {
    // The end is folded into the last sample of this life, which this is unless another one follows.
    fetch(reader);
    if (fetched_.empty() && taken_.alive) {
      add_change(next.instance_state);
    }
  }
  due_ = std::min(due_, fetched_.size());
  return to_dcps(next, starts_life, instance_);
}

bool ReaderCache::next_notification(dds_entity_t reader) {
  const std::lock_guard lock(mutex_);
  if (due_ > 0) {
    --due_;
    return true;
  }
  void* place = read_sample_.get();
  dds_sample_info_t entry;
  while (dds_read_mask(reader, &place, &entry, 1, 1, NOT_NOTIFIED) == 1) {
    const bool is_told = entry.valid_data || notified_.ends_by(entry);
    notified_.alive = false;
    if (entry.valid_data) {
      notified_.update(entry);
    }
    if (is_told) {
      return true;
    }
    // A silent end of a life whose last sample has been taken: the next sample follows no change.
    taken_.alive = taken_.alive && taken_.ends_by(entry);
  }
  return false;
}

}  // namespace dcps
