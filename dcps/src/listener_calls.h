#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "delivery.h"

namespace dcps {

/// The calls of one entity's listener. Thread-safe.
class ListenerCalls {
public:
  explicit ListenerCalls(std::shared_ptr<Delivery> delivery) : delivery_(std::move(delivery)) {}

  /// Runs `work` on the delivery thread; what it calls of the listener it calls through call(). It keeps whatever it
  /// needs alive itself.
  void post(Delivery::Call work) { delivery_->post(std::move(work)); }
  void post_at(Delivery::Clock::time_point time, Delivery::Call work) { delivery_->post_at(time, std::move(work)); }

  /// Makes one call of the listener. False, without the call: closed.
  bool call(const std::function<void()>& call);

  /// No call begins after this; waits for the one under way, unless this is called from within it.
  void close();

private:
  const std::shared_ptr<Delivery> delivery_;
  std::mutex mutex_;
  std::condition_variable ended_;
  std::thread::id caller_;  ///< the thread that is inside the listener
  bool closed_ = false;
};

}  // namespace dcps
