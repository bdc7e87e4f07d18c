#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace doubles {

/// The calls of the driver's call-backs, in order: the letter of the call-back and its argument. Any thread.
class Heard {
public:
  using Calls = std::vector<std::pair<char, int>>;

  void add(char what, int value) {
    const std::lock_guard guard(mutex_);
    calls_.emplace_back(what, value);
    threads_.push_back(std::this_thread::get_id());
    changed_.notify_all();
  }
  /// Waits for at least `number` calls, at most a minute, and returns all calls so far.
  Calls at_least(std::size_t number) {
    std::unique_lock guard(mutex_);
    changed_.wait_for(guard, std::chrono::minutes(1), [&] { return calls_.size() >= number; });
    return calls_;
  }
  std::vector<std::thread::id> threads() {
    const std::lock_guard guard(mutex_);
    return threads_;
  }
  void clear() {
    const std::lock_guard guard(mutex_);
    calls_.clear();
    threads_.clear();
  }

private:
  std::mutex mutex_;
  std::condition_variable changed_;
  Calls calls_;
  std::vector<std::thread::id> threads_;
};

inline Heard heard;

/// The call-back with that letter.
template <char What>
void hear(int value) {
  heard.add(What, value);
}

}  // namespace doubles
