#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace simulator::services {

/// Whether this process is to end; lets calls that wait notice it. Any thread.
class Ending {
public:
  void begin();

  /// Waits for `time`, or less when the end comes. Returns whether the process is to end.
  bool wait_for(std::chrono::milliseconds time);

private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool begun_ = false;
};

}  // namespace simulator::services
