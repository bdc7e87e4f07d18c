#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "tests/doubles/call_log.h"

namespace doubles {

/// The radar-altimeter board behind platform/radalt.h, played. The one that lives is the one that the driver calls
/// reach; without one they fail with status -1. Any thread.
///
/// Calls in the log: "init", "read <space> <address>", "write <space> <address> <value>", "lock", "unlock".
class FakeRadalt {
public:
  FakeRadalt();
  ~FakeRadalt();
  FakeRadalt(const FakeRadalt&) = delete;
  FakeRadalt& operator=(const FakeRadalt&) = delete;

  /// What opening the board returns; 7 unless told.
  FakeRadalt& opens_with(int result);
  /// Contents of a register; 0 unless told.
  FakeRadalt& holds(unsigned int space, unsigned int address, unsigned int value);
  /// What the next reads of a register yield, one after the other; afterwards its contents again.
  FakeRadalt& reads_next(unsigned int space, unsigned int address, std::initializer_list<unsigned int> values);
  /// Each read of the request register shows a requested transfer as pending that many times; 0 unless told.
  FakeRadalt& transfer_pending_for(unsigned int reads);
  FakeRadalt& transfer_never_ends();

  /// Statuses that the operations return from now on. A failed read leaves the caller's word as it is, or sets it.
  FakeRadalt& read_fails(int status, std::optional<unsigned int> left_behind = std::nullopt);
  FakeRadalt& write_fails(int status);
  FakeRadalt& lock_fails(int status);
  FakeRadalt& unlock_fails(int status);

  unsigned int contents(unsigned int space, unsigned int address) const;
  /// The handles with which the board was called.
  std::set<int> handles() const;
  /// When, by the system clock, each of the log's reads and writes was made.
  std::vector<std::chrono::system_clock::time_point> access_times() const;

  /// @name What the driver's functions do
  /// @{
  int init() const;
  int read(int handle, unsigned int space, unsigned int address, unsigned int* value);
  int write(int handle, unsigned int space, unsigned int address, unsigned int value);
  int lock(int handle);
  int unlock(int handle);
  /// @}

private:
  using Register = std::pair<unsigned int, unsigned int>;
  unsigned int next_value(const Register& at);

  mutable std::mutex mutex_;
  int init_result_ = 7;
  int read_status_ = 0;
  int write_status_ = 0;
  int lock_status_ = 0;
  int unlock_status_ = 0;
  std::optional<unsigned int> left_behind_;
  std::map<Register, unsigned int> registers_;
  std::map<Register, std::deque<unsigned int>> scripts_;
  unsigned int pending_reads_ = 0;
  unsigned int reads_left_ = 0;
  unsigned int pending_bit_ = 0;
  std::set<int> handles_;
  std::vector<std::chrono::system_clock::time_point> access_times_;
};

}  // namespace doubles
