#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <string>
#include <thread>

namespace doubles {

/// A thread whose waiting a test can detect. Joined by the destructor.
class WaitingThread {
public:
  explicit WaitingThread(std::function<void()> work)
      : thread_([this, work] {
          id_.set_value(gettid());
          work();
          ended_ = true;
        }),
        task_("/proc/self/task/" + std::to_string(id_.get_future().get()) + "/stat") {}
  ~WaitingThread() { join(); }
  WaitingThread(const WaitingThread&) = delete;
  WaitingThread& operator=(const WaitingThread&) = delete;

  /// Returns true once the kernel has put the thread to sleep (in a lock, a wait or a pause), false if the thread has
  /// ended.
  bool waits() const {
    while (!ended_) {
      if (sleeps()) {
        return !ended_;
      }
      std::this_thread::yield();
    }
    return false;
  }
  bool has_ended() const { return ended_; }
  void join() {
    if (thread_.joinable()) {
      thread_.join();
    }
  }
  std::thread::native_handle_type handle() { return thread_.native_handle(); }

private:
  bool sleeps() const {
    std::string status;
    std::getline(std::ifstream(task_), status);
    return status.find(") S ") != std::string::npos;
  }

  std::promise<pid_t> id_;
  std::atomic<bool> ended_{false};
  std::thread thread_;
  std::string task_;
};

}  // namespace doubles
