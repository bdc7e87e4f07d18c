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
  /// Called once per sample and per change of the instance's state. The call may come before create_datareader has
  /// returned. While it blocks, the participant's other listeners wait; nothing else does.
  virtual void on_data_available(DataReader_ptr reader) = 0;
  virtual void on_subscription_matched(DataReader_ptr reader, const SubscriptionMatchedStatus& status) = 0;
  virtual void on_sample_lost(DataReader_ptr reader, const SampleLostStatus& status) = 0;
};

class __attribute__((visibility("default"))) SubscriberListener : public virtual DataReaderListener {
public:
  DCPS_INTERFACE_BODY(SubscriberListener)
};

/// Receives the samples of a topic. The typed interface, generated per topic type, has the operation that takes them.
class __attribute__((visibility("default"))) DataReader : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(DataReader)
};

/// Makes and owns readers.
class __attribute__((visibility("default"))) Subscriber : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(Subscriber)

  /// `a_listener` is called for the statuses in `mask`; it may be nil. The caller owns the returned reference; nil if
  /// the reader cannot be made.
  virtual DataReader_ptr create_datareader(TopicDescription_ptr a_topic, const DataReaderQos& qos,
                                           DataReaderListener_ptr a_listener, StatusMask mask) = 0;
  /// Waits for a running call of the reader's listener, unless called from it; no call starts later. Then releases the
  /// listener: before this returns, or at the end of the call that this was called from.
  /// Returns RETCODE_PRECONDITION_NOT_MET if the reader is not this subscriber's, RETCODE_ERROR if it is not of this
  /// engine.
  virtual ReturnCode_t delete_datareader(DataReader_ptr a_datareader) = 0;
  /// Deletes all its readers, likewise; the subscriber stays usable.
  virtual ReturnCode_t delete_contained_entities() = 0;

  virtual ReturnCode_t get_default_datareader_qos(DataReaderQos& qos) = 0;
};

}  // namespace DDS
