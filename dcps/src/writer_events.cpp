#include "dcps/src/writer_events.h"

#include <dcps/writer.h>

#include "dcps/src/callback_order.h"
#include "dcps/src/listener_calls.h"
#include "dcps/src/references.h"
#include "dcps/src/statuses.h"

namespace dcps {

template <typename Status>
void WriterEvents::post(void* writer, void (DDS::DataWriterListener::*operation)(DDS::DataWriter_ptr, const Status&),
                        const Status& status) {
  auto* const from = static_cast<DataWriterImpl*>(writer);
  const CallbackOrder order(from);
  from->calls_->post([kept = add_reference(from), operation, status] {
    kept->calls_->call([&] { (kept->listener_->*operation)(kept.in(), status); });
  });
}

CycloneListener WriterEvents::listener_for(DataWriterImpl& writer, DDS::StatusMask mask) {
  CycloneListener listener(dds_create_listener(&writer));
  if (mask & DDS::OFFERED_DEADLINE_MISSED_STATUS) {
    dds_lset_offered_deadline_missed(listener.get(), deadline_missed);
  }
  if (mask & DDS::OFFERED_INCOMPATIBLE_QOS_STATUS) {
    dds_lset_offered_incompatible_qos(listener.get(), incompatible_qos);
  }
  if (mask & DDS::LIVELINESS_LOST_STATUS) {
    dds_lset_liveliness_lost(listener.get(), liveliness_lost);
  }
  if (mask & DDS::PUBLICATION_MATCHED_STATUS) {
    dds_lset_publication_matched(listener.get(), matched);
  }
  return listener;
}

void WriterEvents::deadline_missed(dds_entity_t, dds_offered_deadline_missed_status_t status, void* writer) {
  post(writer, &DDS::DataWriterListener::on_offered_deadline_missed, to_dcps(status));
}

void WriterEvents::incompatible_qos(dds_entity_t, dds_offered_incompatible_qos_status_t status, void* writer) {
  post(writer, &DDS::DataWriterListener::on_offered_incompatible_qos, to_dcps(status));
}

void WriterEvents::liveliness_lost(dds_entity_t, dds_liveliness_lost_status_t status, void* writer) {
  post(writer, &DDS::DataWriterListener::on_liveliness_lost, to_dcps(status));
}

void WriterEvents::matched(dds_entity_t, dds_publication_matched_status_t status, void* writer) {
  post(writer, &DDS::DataWriterListener::on_publication_matched, to_dcps(status));
}

}  // namespace dcps
