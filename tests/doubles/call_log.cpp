#include "tests/doubles/call_log.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace doubles {

void CallLog::record(const std::string& call) {
  std::function<void()> action;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(call);
    recorded_.notify_all();
    const auto found = actions_.find(call);
    if (found != actions_.end()) {
      action = found->second;
    }
  }
  if (action) {
    action();
  }
}

void CallLog::runs_at(const std::string& call, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(mutex_);
  actions_[call] = std::move(action);
}

std::vector<std::string> CallLog::all() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return calls_;
}

std::vector<std::string> CallLog::starting_with(const std::string& prefix) const {
  std::vector<std::string> matching;
  for (const std::string& call : all()) {
    if (call.compare(0, prefix.size(), prefix) == 0) {
      matching.push_back(call);
    }
  }
  return matching;
}

unsigned int CallLog::count(const std::string& call) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<unsigned int>(std::count(calls_.begin(), calls_.end(), call));
}

void CallLog::clear() {
  const std::lock_guard<std::mutex> lock(mutex_);
  calls_.clear();
  actions_.clear();
}

bool CallLog::wait_for(const std::string& call, unsigned int times) const {
  std::unique_lock<std::mutex> lock(mutex_);
  return recorded_.wait_for(lock, std::chrono::seconds(10), [&] {
    return static_cast<unsigned int>(std::count(calls_.begin(), calls_.end(), call)) >= times;
  });
}

CallLog& calls() {
  static CallLog& log = *new CallLog;
  return log;
}

}  // namespace doubles
