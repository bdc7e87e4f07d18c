#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/doubles/gate.h"
#include "tests/unit/dcps/entities.h"

namespace dcps_test {

using doubles::Gate;

/// Ignores all statuses.
class QuietListener : public virtual OpenDDS::DCPS::LocalObject<DDS::DataReaderListener> {
public:
  void on_requested_deadline_missed(DDS::DataReader_ptr, const DDS::RequestedDeadlineMissedStatus&) override {}
  void on_requested_incompatible_qos(DDS::DataReader_ptr, const DDS::RequestedIncompatibleQosStatus&) override {}
  void on_sample_rejected(DDS::DataReader_ptr, const DDS::SampleRejectedStatus&) override {}
  void on_liveliness_changed(DDS::DataReader_ptr, const DDS::LivelinessChangedStatus&) override {}
  void on_data_available(DDS::DataReader_ptr) override {}
  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus&) override {}
  void on_sample_lost(DDS::DataReader_ptr, const DDS::SampleLostStatus&) override {}
};

/// Takes one sample per notification and records it.
class RecordingListener : public QuietListener {
public:
  struct Taken {
    DDS::ReturnCode_t result;
    bool valid;
    DDS::InstanceStateKind state;
    CORBA::Long number;
    std::thread::id thread;
  };

  /// `after_take` runs at the end of each notification, on its thread.
  explicit RecordingListener(std::function<void()> after_take = {}) : after_take_(std::move(after_take)) {}

  void on_data_available(DDS::DataReader_ptr reader) override;

  /// Waits, at most ten seconds, for that many notifications; returns all notifications so far.
  std::vector<Taken> wait_for(std::size_t count);
  std::vector<Taken> taken();

private:
  const std::function<void()> after_take_;
  std::mutex mutex_;
  std::condition_variable more_;
  std::vector<Taken> taken_;
};

/// Blocks at the end of its `nth` notification of data, if ever, until it is let go.
class BlockingListener : public RecordingListener {
public:
  static constexpr int NEVER = 0;
  explicit BlockingListener(int nth = 1);

  Gate entered;
  Gate leave;
  std::atomic<bool> left{false};

protected:
  void block();

private:
  int calls_until_block_;
};

}  // namespace dcps_test
