#include "dcps/src/arrivals.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "dcps/src/engine.h"

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

}  // namespace

Arrivals::Arrivals(std::size_t sample_size, DDS::InstanceHandle_t instance)
    : sample_size_(sample_size), instance_(instance) {}

void Arrivals::set_filter(Clock::duration minimum_separation, bool keep_latest) {
  const std::lock_guard lock(mutex_);
  minimum_separation_ = minimum_separation;
  keep_latest_ = keep_latest;
}

std::optional<Arrivals::Clock::time_point> Arrivals::collect(dds_entity_t reader) {
  const std::lock_guard lock(mutex_);
  const bool held_before = held_.has_value();
  collect_locked(reader);
  if (held_before || !held_) {
    return std::nullopt;
  }
  return *last_passed_ + minimum_separation_;
}

void Arrivals::release_held() {
  const std::lock_guard lock(mutex_);
  if (!held_) {
    return;
  }
  last_passed_ = Clock::now();
  entries_.push_back(std::move(*held_));
  ++due_;
  held_.reset();
}

bool Arrivals::passes_filter(Entry& entry) {
  if (minimum_separation_ == Clock::duration::zero() || !entry.info.valid_data) {
    return true;
  }
  const Clock::time_point now = Clock::now();
  if (!last_passed_ || now - *last_passed_ >= minimum_separation_) {
    last_passed_ = now;
    held_.reset();
    return true;
  }
  if (keep_latest_) {
    held_ = std::move(entry);
  }
  return false;
}

void Arrivals::collect_locked(dds_entity_t reader) {
  constexpr int BATCH = 4;
  const auto samples = std::make_unique<std::byte[]>(BATCH * sample_size_);
  std::array<void*, BATCH> places;
  for (std::size_t i = 0; i < BATCH; ++i) {
    places[i] = samples.get() + i * sample_size_;
  }
  std::array<dds_sample_info_t, BATCH> infos;
  dds_sample_info_t last{};
  int taken = 0;
  do {
    taken = dds_take(reader, places.data(), infos.data(), BATCH, BATCH);
    for (int i = 0; i < taken; ++i) {
      last = infos[static_cast<std::size_t>(i)];
      add(last, places[static_cast<std::size_t>(i)]);
    }
  } while (taken == BATCH);
  add_folded_state_change(last);
}

void Arrivals::add(const dds_sample_info_t& info, const void* sample) {
  Entry entry;
  entry.info.sample_state = DDS::NOT_READ_SAMPLE_STATE;
  entry.info.view_state = info.view_state == DDS_VST_NEW ? DDS::NEW_VIEW_STATE : DDS::NOT_NEW_VIEW_STATE;
  entry.info.instance_state = to_dcps(info.instance_state);
  entry.info.source_timestamp = dcps::to_dcps(info.source_timestamp);
  entry.info.instance_handle = instance_;
  entry.info.disposed_generation_count = static_cast<CORBA::Long>(info.disposed_generation_count);
  entry.info.no_writers_generation_count = static_cast<CORBA::Long>(info.no_writers_generation_count);
  entry.info.valid_data = info.valid_data;
  if (info.valid_data) {
    entry.sample = std::make_unique<std::byte[]>(sample_size_);
    std::memcpy(entry.sample.get(), sample, sample_size_);
  }
  if (!passes_filter(entry)) {
    return;
  }
  entries_.push_back(std::move(entry));
  ++due_;
}

void Arrivals::add_folded_state_change(const dds_sample_info_t& last) {
  if (!last.valid_data || last.instance_state == DDS_IST_ALIVE) {
    return;
  }
  dds_sample_info_t change = last;
  change.valid_data = false;
  add(change, nullptr);
}

bool Arrivals::take(dds_entity_t reader, void* sample, DDS::SampleInfo& info) {
  const std::lock_guard lock(mutex_);
  if (entries_.empty()) {
    collect_locked(reader);
  }
  if (entries_.empty()) {
    return false;
  }
  const Entry& oldest = entries_.front();
  info = oldest.info;
  if (info.valid_data) {
    std::memcpy(sample, oldest.sample.get(), sample_size_);
  }
  entries_.pop_front();
  due_ = std::min(due_, entries_.size());
  return true;
}

bool Arrivals::begin_notifying() {
  const std::lock_guard lock(mutex_);
  if (due_ == 0 || notifying_) {
    return false;
  }
  notifying_ = true;
  return true;
}

bool Arrivals::next_notification() {
  const std::lock_guard lock(mutex_);
  if (due_ == 0) {
    notifying_ = false;
    return false;
  }
  --due_;
  return true;
}

}  // namespace dcps
