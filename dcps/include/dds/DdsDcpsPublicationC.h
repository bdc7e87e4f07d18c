#pragma once

#include <dds/DdsDcpsInfrastructureC.h>

namespace DDS {

class __attribute__((visibility("default"))) DataWriterListener : public virtual Listener {
public:
  DCPS_INTERFACE_BODY(DataWriterListener)

  virtual void on_offered_deadline_missed(DataWriter_ptr writer, const OfferedDeadlineMissedStatus& status) = 0;
  virtual void on_offered_incompatible_qos(DataWriter_ptr writer, const OfferedIncompatibleQosStatus& status) = 0;
  virtual void on_liveliness_lost(DataWriter_ptr writer, const LivelinessLostStatus& status) = 0;
  virtual void on_publication_matched(DataWriter_ptr writer, const PublicationMatchedStatus& status) = 0;
};

class __attribute__((visibility("default"))) PublisherListener : public virtual DataWriterListener {
public:
  DCPS_INTERFACE_BODY(PublisherListener)
};

/// Writes samples to a topic. The typed interface, generated for each topic type, has the operations that write.
class __attribute__((visibility("default"))) DataWriter : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(DataWriter)

  virtual ReturnCode_t get_qos(DataWriterQos& qos) = 0;
  /// The caller owns the returned reference, here and below.
  virtual Topic_ptr get_topic() = 0;
  virtual Publisher_ptr get_publisher() = 0;
  /// Returns once all matched reliable readers have the samples written so far; RETCODE_TIMEOUT: not within `max_wait`.
  virtual ReturnCode_t wait_for_acknowledgments(const Duration_t& max_wait) = 0;
  virtual ReturnCode_t get_publication_matched_status(PublicationMatchedStatus& status) = 0;
};

/// Makes and owns writers.
class __attribute__((visibility("default"))) Publisher : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(Publisher)

  /// DATAWRITER_QOS_DEFAULT stands for the publisher's default QoS, DATAWRITER_QOS_USE_TOPIC_QOS for that default with
  /// the topic's policies. `a_listener` is told of the statuses in `mask`; nil: nobody is. The caller owns the returned
  /// reference; nil: the writer cannot be made.
  virtual DataWriter_ptr create_datawriter(Topic_ptr a_topic, const DataWriterQos& qos,
                                           DataWriterListener_ptr a_listener, StatusMask mask) = 0;
  /// The writer's instance ends at its readers, disposed when the QoS says so (as it does by default).
  /// RETCODE_PRECONDITION_NOT_MET: it is another publisher's; RETCODE_ERROR: it is none of this engine's.
  virtual ReturnCode_t delete_datawriter(DataWriter_ptr a_datawriter) = 0;
  /// A writer of this publisher on the topic of that name; nil: there is none. The caller owns the reference.
  virtual DataWriter_ptr lookup_datawriter(const char* topic_name) = 0;
  /// Deletes all its writers; the publisher stays usable.
  virtual ReturnCode_t delete_contained_entities() = 0;

  virtual ReturnCode_t get_qos(PublisherQos& qos) = 0;
  virtual DomainParticipant_ptr get_participant() = 0;
  virtual ReturnCode_t set_default_datawriter_qos(const DataWriterQos& qos) = 0;
  virtual ReturnCode_t get_default_datawriter_qos(DataWriterQos& qos) = 0;
};

}  // namespace DDS
