#pragma once

#include <dds/dds.h>

#include <dds/DdsDcpsPublicationC.h>

#include "dcps/src/cyclone_listener.h"

namespace dcps {

class DataWriterImpl;

/// Hands a writer's statuses from Cyclone's threads to its listener.
class WriterEvents {
public:
  /// The Cyclone listener for the statuses in `mask`; it is good as long as the writer is.
  static CycloneListener listener_for(DataWriterImpl& writer, DDS::StatusMask mask);

private:
  template <typename Status>
  static void post(void* writer, void (DDS::DataWriterListener::*operation)(DDS::DataWriter_ptr, const Status&),
                   const Status& status);

  static void deadline_missed(dds_entity_t, dds_offered_deadline_missed_status_t status, void* writer);
  static void incompatible_qos(dds_entity_t, dds_offered_incompatible_qos_status_t status, void* writer);
  static void liveliness_lost(dds_entity_t, dds_liveliness_lost_status_t status, void* writer);
  static void matched(dds_entity_t, dds_publication_matched_status_t status, void* writer);
};

}  // namespace dcps
