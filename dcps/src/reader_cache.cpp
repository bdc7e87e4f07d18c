#include "dcps/src/reader_cache.h"

#include <cstring>
#include <utility>

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
  if (!alive) {
    return DDS_IST_ALIVE;
  }
  if (sample.disposed_generation_count != last.disposed_generation_count) {
    return DDS_IST_NOT_ALIVE_DISPOSED;
  }
  if (sample.no_writers_generation_count != last.no_writers_generation_count) {
    return DDS_IST_NOT_ALIVE_NO_WRITERS;
  }
  // Cyclone forgets an instance that has neither samples nor writers, and counts its generations anew.
  return sample.instance_state == DDS_IST_ALIVE ? last.instance_state : DDS_IST_ALIVE;
}

bool ReaderCache::Instance::ends_by(const dds_sample_info_t& change) const {
  // Without a message, the change has the time of the last sample.
  return alive && change.source_timestamp != last.source_timestamp;
}

ReaderCache::ReaderCache(std::size_t sample_size, DDS::InstanceHandle_t instance)
    : sample_size_(sample_size),
      instance_(instance),
      sample_(std::make_unique<std::byte[]>(sample_size)),
      held_sample_(std::make_unique<std::byte[]>(sample_size)) {}

DDS::ReturnCode_t ReaderCache::take(dds_entity_t reader, void* sample, DDS::SampleInfo& info) {
  const std::lock_guard lock(mutex_);
  if (held_) {
    info = give_sample(*std::exchange(held_, std::nullopt), held_sample_, sample);
    return DDS::RETCODE_OK;
  }
  void* place = sample_.get();
  dds_sample_info_t entry;
  dds_return_t count = 0;
  while ((count = dds_take(reader, &place, &entry, 1, 1)) == 1) {
    if (entry.valid_data) {
      const bool follows_change = taken_.state_before(entry) != DDS_IST_ALIVE;
      info = follows_change ? hold(entry) : give_sample(entry, sample_, sample);
      return DDS::RETCODE_OK;
    }
    const bool is_told = taken_.ends_by(entry);
    taken_.alive = false;
    if (is_told) {
      info = give_change(entry, entry.instance_state);
      return DDS::RETCODE_OK;
    }
  }
  if (count < 0) {
    return DDS::RETCODE_ALREADY_DELETED;
  }
  if (!taken_.end_is_folded()) {
    return DDS::RETCODE_NO_DATA;
  }
  info = give_change(taken_.last, taken_.last.instance_state);
  return DDS::RETCODE_OK;
}

DDS::SampleInfo ReaderCache::give_sample(const dds_sample_info_t& info, const Bytes& from, void* to) {
  std::memcpy(to, from.get(), sample_size_);
  const bool is_new = !taken_.alive;
  taken_.update(info);
  end_is_notified_ = false;
  return to_dcps(info, is_new, instance_);
}

DDS::SampleInfo ReaderCache::give_change(dds_sample_info_t info, dds_instance_state_t state) {
  taken_.alive = false;
  info.valid_data = false;
  info.instance_state = state;
  return to_dcps(info, false, instance_);
}

DDS::SampleInfo ReaderCache::hold(const dds_sample_info_t& info) {
  const dds_instance_state_t state = taken_.state_before(info);
  held_ = info;
  held_is_notified_ = false;
  sample_.swap(held_sample_);
  return give_change(taken_.last, state);
}

bool ReaderCache::next_notification(dds_entity_t reader) {
  const std::lock_guard lock(mutex_);
  void* place = sample_.get();
  dds_sample_info_t entry;
  while (dds_read_mask(reader, &place, &entry, 1, 1, NOT_NOTIFIED) == 1) {
    if (entry.valid_data) {
      notified_.update(entry);
      return true;
    }
    const bool is_told = notified_.ends_by(entry);
    notified_.alive = false;
    if (is_told) {
      end_is_notified_ = true;
      return true;
    }
    taken_.alive = taken_.alive && taken_.ends_by(entry);
  }
  if (!std::exchange(held_is_notified_, true)) {
    return true;
  }
  return taken_.end_is_folded() && !std::exchange(end_is_notified_, true);
}

}  // namespace dcps
