#pragma once

#include <gtest/gtest.h>
#include <psdriver.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "this_unit.h"

namespace simulator_test {

/// What the driver's call-backs were called with, in order.
class Heard {
public:
  using Calls = std::vector<std::pair<char, int>>;

  void add(char what, int value) {
    const std::lock_guard guard(mutex_);
    calls_.emplace_back(what, value);
    threads_.push_back(std::this_thread::get_id());
    changed_.notify_all();
  }
  /// The first `number` calls, once there are so many.
  Calls first(std::size_t number) {
    std::unique_lock guard(mutex_);
    changed_.wait_for(guard, std::chrono::seconds(60), [&] { return calls_.size() >= number; });
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

/// A call-back for one kind of reply, told apart by a letter.
template <char What>
void hear(int value) {
  heard.add(What, value);
}

class DriverTest : public ::testing::Test {
protected:
  DriverTest() {
    ThisUnit::get().reset();
    heard.clear();
    unit_.power_supply().set_reply_delay(0);
  }
  ~DriverTest() override { ThisUnit::get().reset(); }

  simulator::model::UnitModel& unit_ = ThisUnit::get().model();
  simulator::model::PowerSupply& power_supply_ = unit_.power_supply();
};

}  // namespace simulator_test
