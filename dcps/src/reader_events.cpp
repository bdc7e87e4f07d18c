#include "dcps/src/reader_events.h"

#include <dcps/reader.h>

#include "dcps/src/callback_order.h"
#include "dcps/src/listener_calls.h"
#include "dcps/src/references.h"
#include "dcps/src/statuses.h"

namespace dcps {

template <typename Status>
void ReaderEvents::post(void* reader, void (DDS::DataReaderListener::*operation)(DDS::DataReader_ptr, const Status&),
                        const Status& status) {
  auto* const from = static_cast<DataReaderImpl*>(reader);
  const CallbackOrder order(from);
  from->calls_->post([kept = add_reference(from), operation, status] {
    kept->calls_->call([&] { (kept->listener_->*operation)(kept.in(), status); });
  });
}

CycloneListener ReaderEvents::listener_for(DataReaderImpl& reader, DDS::StatusMask mask) {
  CycloneListener listener(dds_create_listener(&reader));
  dds_listener_t* const to = listener.get();
  if (mask & DDS::DATA_AVAILABLE_STATUS) {
    dds_lset_data_available(to, data_available);
  }
  if (mask & DDS::REQUESTED_DEADLINE_MISSED_STATUS) {
    dds_lset_requested_deadline_missed(to, deadline_missed);
  }
  if (mask & DDS::REQUESTED_INCOMPATIBLE_QOS_STATUS) {
    dds_lset_requested_incompatible_qos(to, incompatible_qos);
  }
  if (mask & DDS::SAMPLE_REJECTED_STATUS) {
    dds_lset_sample_rejected(to, rejected);
  }
  if (mask & DDS::LIVELINESS_CHANGED_STATUS) {
    dds_lset_liveliness_changed(to, liveliness_changed);
  }
  if (mask & DDS::SUBSCRIPTION_MATCHED_STATUS) {
    dds_lset_subscription_matched(to, matched);
  }
  if (mask & DDS::SAMPLE_LOST_STATUS) {
    dds_lset_sample_lost(to, lost);
  }
  return listener;
}

void ReaderEvents::data_available(dds_entity_t cyclone, void* reader) noexcept {
  auto* const to = static_cast<DataReaderImpl*>(reader);
  const CallbackOrder order(to);
  to->data_arrived(cyclone);
}

void ReaderEvents::deadline_missed(dds_entity_t, dds_requested_deadline_missed_status_t status, void* reader) {
  post(reader, &DDS::DataReaderListener::on_requested_deadline_missed, to_dcps(status));
}

void ReaderEvents::incompatible_qos(dds_entity_t, dds_requested_incompatible_qos_status_t status, void* reader) {
  post(reader, &DDS::DataReaderListener::on_requested_incompatible_qos, to_dcps(status));
}

void ReaderEvents::rejected(dds_entity_t, dds_sample_rejected_status_t status, void* reader) {
  post(reader, &DDS::DataReaderListener::on_sample_rejected, to_dcps(status));
}

void ReaderEvents::liveliness_changed(dds_entity_t, dds_liveliness_changed_status_t status, void* reader) {
  post(reader, &DDS::DataReaderListener::on_liveliness_changed, to_dcps(status));
}

void ReaderEvents::matched(dds_entity_t, dds_subscription_matched_status_t status, void* reader) {
  post(reader, &DDS::DataReaderListener::on_subscription_matched, to_dcps(status));
}

void ReaderEvents::lost(dds_entity_t, dds_sample_lost_status_t status, void* reader) {
  post(reader, &DDS::DataReaderListener::on_sample_lost, to_dcps(status));
}

}  // namespace dcps
