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

/// A fake of the radar-altimeter board behind platform/radalt.h. Driver calls use the existing fake; without one they
/// fail with status -1. Any thread.
///
/// Calls in the log: "init", "read <space> <address>", "write <space> <address> <value>", "lock", "unlock".
class FakeRadalt {
public:
  FakeRadalt();
  ~FakeRadalt();
  FakeRadalt(const FakeRadalt&) = delete;
  FakeRadalt& operator=(const FakeRadalt&) = delete;

  /// Result of opening the board; 7 unless set.
  FakeRadalt& opens_with(int result);
  /// Contents of a register; 0 unless set.
  FakeRadalt& holds(unsigned int space, unsigned int address, unsigned int value);
  /// Results of the next reads of a register, in order; later reads return its contents.
  FakeRadalt& reads_next(unsigned int space, unsigned int address, std::initializer_list<unsigned int> values);
  /// Number of reads of the request register that show a requested transfer as pending; 0 unless set.
  FakeRadalt& transfer_pending_for(unsigned int reads);
  FakeRadalt& transfer_never_ends();

  /// Statuses that the operations return from now on. A failed read leaves the caller's word unchanged, or sets it.
  FakeRadalt& read_fails(int status, std::optional<unsigned int> left_behind = std::nullopt);
  FakeRadalt& write_fails(int status);
  FakeRadalt& lock_fails(int status);
  FakeRadalt& unlock_fails(int status);

  unsigned int contents(unsigned int space, unsigned int address) const;
  /// The handles passed to the board.
  std::set<int> handles() const;
  /// The system-clock times of the reads and writes in the log.
  std::vector<std::chrono::system_clock::time_point> access_times() const;

  /// @name Implementation of the driver's functions
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
