#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace dcps {

/// The thread on which a participant's listeners are called: one call after the other, in the order in which they were
/// posted, timed ones when their time has come. Started by the first call. All operations may be called from any
/// thread.
class Delivery {
public:
  using Call = std::function<void()>;
  using Clock = std::chrono::steady_clock;

  Delivery();
  /// Calls not begun yet are dropped; waits for the one under way, unless that is where this is called from.
  ~Delivery();
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;

  /// Runs `call` soon. An exception that leaves it ends the process.
  void post(Call call);
  /// Runs `call` at that time.
  void post_at(Clock::time_point time, Call call);

private:
  struct Queue;
  void start_thread();
  static void run(const std::shared_ptr<Queue>& queue) noexcept;

  std::shared_ptr<Queue> queue_;
};

}  // namespace dcps
