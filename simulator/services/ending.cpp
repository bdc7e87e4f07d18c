#include "simulator/services/ending.h"

namespace simulator::services {

void Ending::begin() {
  const std::lock_guard<std::mutex> lock(mutex_);
  begun_ = true;
  changed_.notify_all();
}

bool Ending::wait_for(std::chrono::milliseconds time) {
  std::unique_lock<std::mutex> lock(mutex_);
  return changed_.wait_for(lock, time, [this] { return begun_; });
}

}  // namespace simulator::services
