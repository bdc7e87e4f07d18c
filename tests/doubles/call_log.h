#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace doubles {

/// The calls to all doubles, one text per call, in the order of the calls. Any thread.
class CallLog {
public:
  void record(const std::string& call);
  /// Every call since the last clear().
  std::vector<std::string> all() const;
  /// The calls that begin with `prefix`.
  std::vector<std::string> starting_with(const std::string& prefix) const;
  unsigned int count(const std::string& call) const;
  void clear();
  /// Waits until `call` has been recorded `times` times; false after ten seconds.
  bool wait_for(const std::string& call, unsigned int times = 1) const;
  /// Runs `action` whenever `call` has been recorded, on the thread that records it, until the next clear().
  void runs_at(const std::string& call, std::function<void()> action);

private:
  mutable std::mutex mutex_;
  mutable std::condition_variable recorded_;
  std::vector<std::string> calls_;
  std::map<std::string, std::function<void()>> actions_;
};

/// The log that all doubles write to. Usable during static initialisation and at exit.
CallLog& calls();

using Calls = std::vector<std::string>;

}  // namespace doubles
