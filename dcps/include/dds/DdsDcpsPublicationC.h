#pragma once

#include <dds/DdsDcpsInfrastructureC.h>

namespace DDS {

class __attribute__((visibility("default"))) DataWriterListener : public virtual Listener {
public:
  DCPS_INTERFACE_BODY(DataWriterListener)
};

class __attribute__((visibility("default"))) PublisherListener : public virtual DataWriterListener {
public:
  DCPS_INTERFACE_BODY(PublisherListener)
};

/// Writes samples to a topic. The typed interface, generated per topic type, has the operations that write.
class __attribute__((visibility("default"))) DataWriter : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(DataWriter)

  virtual ReturnCode_t get_publication_matched_status(PublicationMatchedStatus& status) = 0;
};

/// Makes and owns writers.
class __attribute__((visibility("default"))) Publisher : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(Publisher)

  /// The caller owns the returned reference; nil if the writer cannot be made or `a_listener` is not nil.
  virtual DataWriter_ptr create_datawriter(Topic_ptr a_topic, const DataWriterQos& qos,
                                           DataWriterListener_ptr a_listener, StatusMask mask) = 0;
  /// Unregisters the writer's instance, so that its readers see it end: disposed if the QoS says so, as by default.
  /// Returns RETCODE_PRECONDITION_NOT_MET if the writer is not this publisher's, RETCODE_ERROR if it is not of this
  /// engine.
  virtual ReturnCode_t delete_datawriter(DataWriter_ptr a_datawriter) = 0;
  /// Deletes all its writers; the publisher stays usable.
  virtual ReturnCode_t delete_contained_entities() = 0;

  virtual ReturnCode_t get_default_datawriter_qos(DataWriterQos& qos) = 0;
};

}  // namespace DDS
