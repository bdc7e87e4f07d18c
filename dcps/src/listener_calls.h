#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include <dds/DdsDcpsInfrastructureC.h>

#include "dcps/src/delivery.h"

namespace dcps {

/// The calls of one entity's listener, which it refers to until it is closed. Thread-safe.
class ListenerCalls {
public:
  /// `listener`: may be nil; call() is then not used.
  ListenerCalls(std::shared_ptr<Delivery> delivery, DDS::Listener_ptr listener);

  /// Runs `work` on the delivery thread. It calls the listener through call() only, and keeps whatever it needs alive
  /// itself.
  void post(Delivery::Call work) { delivery_->post(std::move(work)); }
  void post_at(Delivery::Clock::time_point time, Delivery::Call work) { delivery_->post_at(time, std::move(work)); }

  /// Makes one call of the listener. False, without the call: closed.
  bool call(const std::function<void()>& call);

  /// No call begins after this; waits for the one under way. The listener is given back. When this is called from
  /// within a call, it does not wait, and the listener is given back at that call's end.
  void close();

private:
  const std::shared_ptr<Delivery> delivery_;
  std::mutex mutex_;
  std::condition_variable ended_;
  DDS::Listener_var listener_;
  std::thread::id caller_;  ///< the thread that is inside the listener
  bool closed_ = false;
  bool closed_by_caller_ = false;  ///< from within its call
};

}  // namespace dcps
