#include "dcps/src/listener_calls.h"

namespace dcps {

ListenerCalls::ListenerCalls(std::shared_ptr<Delivery> delivery, DDS::Listener_ptr listener)
    : delivery_(std::move(delivery)), listener_(DDS::Listener::_duplicate(listener)) {}

bool ListenerCalls::call(const std::function<void()>& call) {
  DDS::Listener_var given_back;
  std::unique_lock lock(mutex_);
  if (closed_) {
    return false;
  }
  caller_ = std::this_thread::get_id();
  lock.unlock();
  call();
  lock.lock();
  caller_ = {};
  if (closed_by_caller_) {
    given_back = listener_._retn();
  }
  ended_.notify_all();
  lock.unlock();
  return true;
}

void ListenerCalls::close() {
  DDS::Listener_var given_back;
  std::unique_lock lock(mutex_);
  closed_ = true;
  closed_by_caller_ = caller_ == std::this_thread::get_id();
  if (closed_by_caller_) {
    return;
  }
  ended_.wait(lock, [&] { return caller_ == std::thread::id(); });
  given_back = listener_._retn();
  lock.unlock();
}

}  // namespace dcps
