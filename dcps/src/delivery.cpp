#include "dcps/src/delivery.h"

#include <pthread.h>
#include <signal.h>

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

namespace dcps {

struct Delivery::Queue {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Call> calls;
  std::multimap<Clock::time_point, Call> timed;
  bool stopping = false;
  std::thread thread;

  /// Returns once there is a call to make. False: stopping.
  bool wait_for_work(std::unique_lock<std::mutex>& lock) {
    while (!stopping) {
      const auto now = Clock::now();
      while (!timed.empty() && timed.begin()->first <= now) {
        calls.push_back(std::move(timed.begin()->second));
        timed.erase(timed.begin());
      }
      if (!calls.empty()) {
        return true;
      }
      if (timed.empty()) {
        changed.wait(lock);
      } else {
        changed.wait_until(lock, timed.begin()->first);
      }
    }
    return false;
  }
};

namespace {

/// While it lives, threads that are started take no signals: these belong to the program.
class SignalsBlocked {
public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
  sigset_t before_;
};

}  // namespace

Delivery::Delivery() : queue_(std::make_shared<Queue>()) {}

Delivery::~Delivery() {
  std::unique_lock lock(queue_->mutex);
  queue_->stopping = true;
  queue_->calls.clear();
  queue_->timed.clear();
  queue_->changed.notify_one();
  if (!queue_->thread.joinable()) {
    return;
  }
  std::thread thread = std::move(queue_->thread);
  lock.unlock();
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

void Delivery::post(Call call) {
  const std::lock_guard lock(queue_->mutex);
  queue_->calls.push_back(std::move(call));
  start_thread();
  queue_->changed.notify_one();
}

void Delivery::post_at(Clock::time_point time, Call call) {
  const std::lock_guard lock(queue_->mutex);
  queue_->timed.emplace(time, std::move(call));
  start_thread();
  queue_->changed.notify_one();
}

void Delivery::start_thread() {
  if (queue_->thread.joinable()) {
    return;
  }
  const SignalsBlocked blocked;
  queue_->thread = std::thread([queue = queue_] { run(queue); });
  pthread_setname_np(queue_->thread.native_handle(), "dcps.listener");
}

void Delivery::run(const std::shared_ptr<Queue>& queue) noexcept {
  std::unique_lock lock(queue->mutex);
  while (queue->wait_for_work(lock)) {
    Call call = std::move(queue->calls.front());
    queue->calls.pop_front();
    lock.unlock();
    call();
    call = nullptr;
    lock.lock();
  }
}

}  // namespace dcps
