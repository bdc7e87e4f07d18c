#include "listener_calls.h"

namespace dcps {

bool ListenerCalls::call(const std::function<void()>& call) {
  std::unique_lock lock(mutex_);
  if (closed_) return false;
  caller_ = std::this_thread::get_id();
  lock.unlock();
  call();
  lock.lock();
  caller_ = {};
  ended_.notify_all();
  return true;
}

void ListenerCalls::close() {
  std::unique_lock lock(mutex_);
  closed_ = true;
  if (caller_ == std::this_thread::get_id()) return;
  ended_.wait(lock, [&] { return caller_ == std::thread::id(); });
}

}  // namespace dcps
