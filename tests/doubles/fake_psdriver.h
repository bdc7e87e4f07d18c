#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "psdriver.h"
#include "tests/doubles/call_log.h"

namespace doubles {

/// A fake of the power-supply driver behind platform/psdriver.h. Every psdriver object uses the existing fake; without
/// one, operations throw psdriverError. Any thread.
///
/// Each request is answered by one call of its registered function on the driver's own thread, with 0 unless set.
/// Operations are identified by their names; opening the device is "psdriver". Calls in the log: the operation's name,
/// for registrations and requests; "psdriver /dev/i2c-3"; "SetSystemLEDStatus 12 0" with its arguments.
class FakePsdriver {
public:
  FakePsdriver();
  /// Ends the driver's thread; replies still held or queued are dropped.
  ~FakePsdriver();
  FakePsdriver(const FakePsdriver&) = delete;
  FakePsdriver& operator=(const FakePsdriver&) = delete;

  /// Sets the answer to the request from now on.
  FakePsdriver& answers(const std::string& request, int value);
  /// The request is accepted but never answered.
  FakePsdriver& stays_silent(const std::string& request);
  /// The `nth` call of the operation from now on throws psdriverError, once.
  FakePsdriver& fails(const std::string& operation, unsigned int nth = 1);
  /// From now on every call of the operation runs `action` first; its exceptions leave the operation.
  FakePsdriver& runs_first(const std::string& operation, std::function<void()> action);
  /// Holds replies back until release().
  FakePsdriver& holds_replies();
  FakePsdriver& release();

  /// The function registered with that registration; null if there is none.
  psdriver::Callback registered(const std::string& registration) const;
  /// Calls the switch handler on the driver's thread and waits until it has returned.
  void interrupt(int value);
  /// Calls the function of that registration on the driver's thread and waits until it has returned.
  void deliver(const std::string& registration, int value);
  /// Waits until the driver's thread has delivered everything that is not held back.
  void settle();
  /// The driver's own thread.
  std::thread::id thread_id() const;

  /// @name Implementation of the driver's operations
  /// @{
  void operation(const std::string& name, const std::string& logged);
  void registration(const std::string& name, psdriver::Callback function);
  void request(const std::string& name, const std::string& answered_through);
  /// @}

private:
  struct Reply {
    psdriver::Callback function;
    int value;
  };
  void serve();
  void queue(const Reply& reply);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::string, psdriver::Callback> registered_;
  std::map<std::string, int> answers_;
  std::set<std::string> silent_;
  std::map<std::string, unsigned int> failing_;
  std::map<std::string, std::function<void()>> actions_;
  bool holding_ = false;
  std::deque<Reply> held_;
  std::deque<Reply> queued_;
  bool delivering_ = false;
  bool ending_ = false;
  std::thread thread_;
};

}  // namespace doubles
