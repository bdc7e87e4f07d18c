#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace doubles {

/// A gate that is closed until it is opened. Any thread.
class Gate {
public:
  void open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    open_ = true;
    opened_.notify_all();
  }
  bool is_open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return open_;
  }
  /// Waits until it is open.
  void pass() {
    std::unique_lock<std::mutex> lock(mutex_);
    opened_.wait(lock, [this] { return open_; });
  }
  /// Likewise, but returns false after ten seconds.
  bool opens_in_time() {
    std::unique_lock<std::mutex> lock(mutex_);
    return opened_.wait_for(lock, std::chrono::seconds(10), [this] { return open_; });
  }

private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool open_ = false;
};

/// Opens the gate when destroyed.
class OpensAtEnd {
public:
  explicit OpensAtEnd(Gate& gate) : gate_(gate) {}
  ~OpensAtEnd() { gate_.open(); }
  OpensAtEnd(const OpensAtEnd&) = delete;
  OpensAtEnd& operator=(const OpensAtEnd&) = delete;

private:
  Gate& gate_;
};

}  // namespace doubles
