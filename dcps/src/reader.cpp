#include <dcps/reader.h>

#include "dcps/src/qos.h"
#include "dcps/src/reader_cache.h"
#include "dcps/src/statuses.h"
#include "dcps/src/subscriber.h"
#include "dcps/src/topic.h"

namespace dcps {

namespace {

using Listener = DDS::DataReaderListener;

/// Fetches a status of Cyclone's reader and reports it.
template <auto Get, auto Operation, typename CycloneStatus>
void report(DataReaderImpl& reader, Listener& listener) {
  CycloneStatus status{};
  if (Get(reader.cyclone(), &status) == DDS_RETCODE_OK) {
    (listener.*Operation)(&reader, to_dcps(status));
  }
}

struct ReportedStatus {
  DDS::StatusKind kind;
  uint32_t cyclone_kind;
  void (*report)(DataReaderImpl& reader, Listener& listener);
};

/// The statuses that listeners are called for, data apart.
constexpr ReportedStatus STATUSES[] = {
    {DDS::SUBSCRIPTION_MATCHED_STATUS, DDS_SUBSCRIPTION_MATCHED_STATUS,
     report<dds_get_subscription_matched_status, &Listener::on_subscription_matched,
            dds_subscription_matched_status_t>},
    {DDS::LIVELINESS_CHANGED_STATUS, DDS_LIVELINESS_CHANGED_STATUS,
     report<dds_get_liveliness_changed_status, &Listener::on_liveliness_changed, dds_liveliness_changed_status_t>},
    {DDS::REQUESTED_INCOMPATIBLE_QOS_STATUS, DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS,
     report<dds_get_requested_incompatible_qos_status, &Listener::on_requested_incompatible_qos,
            dds_requested_incompatible_qos_status_t>},
    {DDS::REQUESTED_DEADLINE_MISSED_STATUS, DDS_REQUESTED_DEADLINE_MISSED_STATUS,
     report<dds_get_requested_deadline_missed_status, &Listener::on_requested_deadline_missed,
            dds_requested_deadline_missed_status_t>},
    {DDS::SAMPLE_REJECTED_STATUS, DDS_SAMPLE_REJECTED_STATUS,
     report<dds_get_sample_rejected_status, &Listener::on_sample_rejected, dds_sample_rejected_status_t>},
    {DDS::SAMPLE_LOST_STATUS, DDS_SAMPLE_LOST_STATUS,
     report<dds_get_sample_lost_status, &Listener::on_sample_lost, dds_sample_lost_status_t>},
};

/// Cyclone's mask for the statuses in `mask`, data apart.
uint32_t to_cyclone(DDS::StatusMask mask) {
  uint32_t cyclone_mask = 0;
  for (const ReportedStatus& status : STATUSES) {
    cyclone_mask |= (mask & status.kind) != 0 ? status.cyclone_kind : 0;
  }
  return cyclone_mask;
}

/// Makes one call for a status in `mask` that has changed. False if none has, or if the reader is deleted.
bool report_status(DataReaderImpl& reader, Listener& listener, DDS::StatusMask mask) {
  uint32_t changed = 0;
  dds_get_status_changes(reader.cyclone(), &changed);
  for (const ReportedStatus& status : STATUSES) {
    if ((mask & status.kind) != 0 && (changed & status.cyclone_kind) != 0) {
      status.report(reader, listener);
      return true;
    }
  }
  return false;
}

}  // namespace

DataReaderImpl::DataReaderImpl(std::size_t sample_size)
    : cache_(std::make_unique<ReaderCache>(sample_size, next_instance_handle())) {}

DataReaderImpl::~DataReaderImpl() = default;

bool DataReaderImpl::open(SubscriberImpl& subscriber, TopicImpl& topic, const DDS::DataReaderQos& qos) {
  subscriber_ = add_reference(&subscriber);
  topic_ = add_reference(&topic);
  if (!adopt(dds_create_reader(subscriber.cyclone(), topic.cyclone(), to_cyclone(qos).get(), nullptr))) {
    return false;
  }
  topic.add_user();
  return true;
}

bool DataReaderImpl::listen(DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) {
  if (CORBA::is_nil(listener)) {
    return true;
  }
  dds_set_status_mask(cyclone(), to_cyclone(mask));
  const bool wants_data = (mask & DDS::DATA_AVAILABLE_STATUS) != 0;
  const dds_entity_t data = wants_data ? dds_create_readcondition(cyclone(), NOT_NOTIFIED) : 0;
  auto step = [self = add_reference(this), listener = add_reference(listener), mask] {
    return self->call_next(*listener.in(), mask);
  };
  const ParticipantImpl& participant = subscriber_->participant();
  return participant.listeners().add(participant.cyclone(), cyclone(), data, std::move(step));
}

void DataReaderImpl::close() {
  // A call that still runs may take.
  subscriber_->participant().listeners().remove(cyclone());
  dds_delete(give_up());
  topic_->remove_user();
}

bool DataReaderImpl::call_next(DDS::DataReaderListener& listener, DDS::StatusMask mask) {
  const bool data = (mask & DDS::DATA_AVAILABLE_STATUS) != 0 && cache_->next_notification(cyclone());
  if (data) {
    listener.on_data_available(this);
  }
  return report_status(*this, listener, mask) || data;
}

DDS::ReturnCode_t DataReaderImpl::take_sample(void* sample, DDS::SampleInfo& info) {
  const dds_entity_t reader = cyclone();
  return reader == 0 ? DDS::RETCODE_ALREADY_DELETED : cache_->take(reader, sample, info);
}

}  // namespace dcps
