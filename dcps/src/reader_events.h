#pragma once

#include <dds/dds.h>

#include <dds/DdsDcpsSubscriptionC.h>

#include "dcps/src/cyclone_listener.h"

namespace dcps {

class DataReaderImpl;

/// Hands a reader's statuses from Cyclone's threads to its listener.
class ReaderEvents {
public:
  /// The Cyclone listener for the statuses in `mask`; it is good as long as the reader is.
  static CycloneListener listener_for(DataReaderImpl& reader, DDS::StatusMask mask);

private:
  template <typename Status>
  static void post(void* reader, void (DDS::DataReaderListener::*operation)(DDS::DataReader_ptr, const Status&),
                   const Status& status);

  static void data_available(dds_entity_t cyclone, void* reader) noexcept;
  static void deadline_missed(dds_entity_t, dds_requested_deadline_missed_status_t status, void* reader);
  static void incompatible_qos(dds_entity_t, dds_requested_incompatible_qos_status_t status, void* reader);
  static void rejected(dds_entity_t, dds_sample_rejected_status_t status, void* reader);
  static void liveliness_changed(dds_entity_t, dds_liveliness_changed_status_t status, void* reader);
  static void matched(dds_entity_t, dds_subscription_matched_status_t status, void* reader);
  static void lost(dds_entity_t, dds_sample_lost_status_t status, void* reader);
};

}  // namespace dcps
