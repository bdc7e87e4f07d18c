#pragma once

#include "varnok_dds.h"

namespace Varnok {

template <typename T, typename U>
class DDS_SubscriberBase;

/// Takes each arriving sample and hands it to the subscriber that contains the listener. Called on the engine's
/// delivery threads; exceptions propagate to them.
template <typename T>
class DDS_DataReaderListener : public OpenDDS::DCPS::LocalObject<DDS::DataReaderListener> {
public:
  using Subscriber = DDS_SubscriberBase<T, void(char const*)>;

  DDS_DataReaderListener() = default;
  ~DDS_DataReaderListener() override = default;

  /// Sets the subscriber to hand samples to; without one, nothing is taken.
  void dispatch_to(Subscriber* subscriber) { subscriber_ = subscriber; }

  void on_requested_deadline_missed(DDS::DataReader_ptr, const DDS::RequestedDeadlineMissedStatus&) override {}
  void on_requested_incompatible_qos(DDS::DataReader_ptr, const DDS::RequestedIncompatibleQosStatus&) override {}
  void on_sample_rejected(DDS::DataReader_ptr, const DDS::SampleRejectedStatus&) override {}
  void on_liveliness_changed(DDS::DataReader_ptr, const DDS::LivelinessChangedStatus&) override {}
  /// Takes one sample. A valid one is dispatched once start-up is done; a disposed instance and one without writers are
  /// reported on standard output. Throws Runtime_errors::Generic if there is no sample to take.
  void on_data_available(DDS::DataReader_ptr reader) override;
  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus&) override {}
  void on_sample_lost(DDS::DataReader_ptr, const DDS::SampleLostStatus&) override {}

private:
  static void report_without_data(DDS::InstanceStateKind state);

  Subscriber* subscriber_ = nullptr;
};

}  // namespace Varnok
