#pragma once

#include <dds/DdsDcpsInfrastructureC.h>

namespace DDS {

class __attribute__((visibility("default"))) DataReaderListener : public virtual Listener {
public:
  DCPS_INTERFACE_BODY(DataReaderListener)

  virtual void on_requested_deadline_missed(DataReader_ptr reader, const RequestedDeadlineMissedStatus& status) = 0;
  virtual void on_requested_incompatible_qos(DataReader_ptr reader, const RequestedIncompatibleQosStatus& status) = 0;
  virtual void on_sample_rejected(DataReader_ptr reader, const SampleRejectedStatus& status) = 0;
  virtual void on_liveliness_changed(DataReader_ptr reader, const LivelinessChangedStatus& status) = 0;
  /// Called once for every sample that can be taken, changes of an instance's state included; it may come before
  /// create_datareader has returned, and it may block without holding up anything but later calls.
  virtual void on_data_available(DataReader_ptr reader) = 0;
  virtual void on_subscription_matched(DataReader_ptr reader, const SubscriptionMatchedStatus& status) = 0;
  virtual void on_sample_lost(DataReader_ptr reader, const SampleLostStatus& status) = 0;
};

class __attribute__((visibility("default"))) SubscriberListener : public virtual DataReaderListener {
public:
  DCPS_INTERFACE_BODY(SubscriberListener)

  virtual void on_data_on_readers(Subscriber_ptr subs) = 0;
};

/// Gets the samples of a topic. The typed interface, generated for each topic type, has the operations that take them.
class __attribute__((visibility("default"))) DataReader : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(DataReader)

  virtual ReturnCode_t get_qos(DataReaderQos& qos) = 0;
  /// The caller owns the returned reference, here and below.
  virtual TopicDescription_ptr get_topicdescription() = 0;
  virtual Subscriber_ptr get_subscriber() = 0;
  virtual ReturnCode_t get_subscription_matched_status(SubscriptionMatchedStatus& status) = 0;
};

/// Makes and owns readers.
class __attribute__((visibility("default"))) Subscriber : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(Subscriber)

  /// DATAREADER_QOS_DEFAULT stands for the subscriber's default QoS, DATAREADER_QOS_USE_TOPIC_QOS for that default with
  /// the topic's policies. `a_listener` is told of the statuses in `mask`; nil: nobody is. The caller owns the returned
  /// reference; nil: the reader cannot be made.
  virtual DataReader_ptr create_datareader(TopicDescription_ptr a_topic, const DataReaderQos& qos,
                                           DataReaderListener_ptr a_listener, StatusMask mask) = 0;
  /// No call of its listener runs once this has returned, except the one it is called from.
  /// RETCODE_PRECONDITION_NOT_MET: it is another subscriber's; RETCODE_ERROR: it is none of this engine's.
  virtual ReturnCode_t delete_datareader(DataReader_ptr a_datareader) = 0;
  /// A reader of this subscriber on the topic of that name; nil: there is none. The caller owns the reference.
  virtual DataReader_ptr lookup_datareader(const char* topic_name) = 0;
  /// Deletes all its readers; the subscriber stays usable.
  virtual ReturnCode_t delete_contained_entities() = 0;

  virtual ReturnCode_t get_qos(SubscriberQos& qos) = 0;
  virtual DomainParticipant_ptr get_participant() = 0;
  virtual ReturnCode_t set_default_datareader_qos(const DataReaderQos& qos) = 0;
  virtual ReturnCode_t get_default_datareader_qos(DataReaderQos& qos) = 0;
};

}  // namespace DDS
