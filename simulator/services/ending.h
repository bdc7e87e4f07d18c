#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace simulator::services {

/// Tells waiting calls that this process is ending. Any thread.
class Ending {
public:
  void begin();

  /// Waits for `time`, or less if the process is ending. Returns whether it is.
  bool wait_for(std::chrono::milliseconds time);

private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool begun_ = false;
};

}  // namespace simulator::services
