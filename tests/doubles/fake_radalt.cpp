#include "tests/doubles/fake_radalt.h"

#include <ctime>
#include <limits>
#include <string>

#include "radalt.h"

namespace doubles {

namespace {

FakeRadalt* board = nullptr;

constexpr std::pair<unsigned int, unsigned int> RF_REQUEST(1, 252);
constexpr unsigned int FIRST_RF_REGISTER = 128;

/// The C library's clock, which tests may replace.
std::chrono::system_clock::time_point now() {
  std::timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  return std::chrono::system_clock::time_point(std::chrono::seconds(time.tv_sec) +
                                               std::chrono::nanoseconds(time.tv_nsec));
}

std::string numbers(const char* call, unsigned int space, unsigned int address) {
  return std::string(call) + " " + std::to_string(space) + " " + std::to_string(address);
}

}  // namespace

FakeRadalt::FakeRadalt() {
  board = this;
}

FakeRadalt::~FakeRadalt() {
  board = nullptr;
}

FakeRadalt& FakeRadalt::opens_with(int result) {
  init_result_ = result;
  return *this;
}

FakeRadalt& FakeRadalt::holds(unsigned int space, unsigned int address, unsigned int value) {
  const std::lock_guard<std::mutex> lock(mutex_);
  registers_[{space, address}] = value;
  return *this;
}

FakeRadalt& FakeRadalt::reads_next(unsigned int space, unsigned int address,
                                   std::initializer_list<unsigned int> values) {
  const std::lock_guard<std::mutex> lock(mutex_);
  scripts_[{space, address}] = values;
  return *this;
}

FakeRadalt& FakeRadalt::transfer_pending_for(unsigned int reads) {
  const std::lock_guard<std::mutex> lock(mutex_);
  pending_reads_ = reads;
  return *this;
}

FakeRadalt& FakeRadalt::transfer_never_ends() {
  return transfer_pending_for(std::numeric_limits<unsigned int>::max());
}

FakeRadalt& FakeRadalt::read_fails(int status, std::optional<unsigned int> left_behind) {
  read_status_ = status;
  left_behind_ = left_behind;
  return *this;
}

FakeRadalt& FakeRadalt::write_fails(int status) {
  write_status_ = status;
  return *this;
}

FakeRadalt& FakeRadalt::lock_fails(int status) {
  lock_status_ = status;
  return *this;
}

FakeRadalt& FakeRadalt::unlock_fails(int status) {
  unlock_status_ = status;
  return *this;
}

unsigned int FakeRadalt::contents(unsigned int space, unsigned int address) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = registers_.find({space, address});
  return found == registers_.end() ? 0 : found->second;
}

std::set<int> FakeRadalt::handles() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return handles_;
}

std::vector<std::chrono::system_clock::time_point> FakeRadalt::access_times() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return access_times_;
}

int FakeRadalt::init() const {
  calls().record("init");
  return init_result_;
}

int FakeRadalt::read(int handle, unsigned int space, unsigned int address, unsigned int* value) {
  const std::lock_guard<std::mutex> lock(mutex_);
  calls().record(numbers("read", space, address));
  access_times_.push_back(now());
  handles_.insert(handle);
  if (read_status_ == 0) {
    *value = next_value({space, address});
  } else if (left_behind_) {
    *value = *left_behind_;
  }
  return read_status_;
}

unsigned int FakeRadalt::next_value(const Register& at) {
  std::deque<unsigned int>& script = scripts_[at];
  if (!script.empty()) {
    const unsigned int value = script.front();
    script.pop_front();
    return value;
  }
  if (at != RF_REQUEST) {
    return registers_[at];
  }
  if (reads_left_ == 0) {
    return 0;
  }
  --reads_left_;
  return pending_bit_;
}

int FakeRadalt::write(int handle, unsigned int space, unsigned int address, unsigned int value) {
  const std::lock_guard<std::mutex> lock(mutex_);
  calls().record(numbers("write", space, address) + " " + std::to_string(value));
  access_times_.push_back(now());
  handles_.insert(handle);
  if (write_status_ != 0) {
    return write_status_;
  }
  registers_[{space, address}] = value;
  if (Register(space, address) == RF_REQUEST) {
    pending_bit_ = 1U << ((value - FIRST_RF_REGISTER) / 4);
    reads_left_ = pending_reads_;
  }
  return 0;
}

int FakeRadalt::lock(int handle) {
  const std::lock_guard<std::mutex> lock(mutex_);
  calls().record("lock");
  handles_.insert(handle);
  return lock_status_;
}

int FakeRadalt::unlock(int handle) {
  const std::lock_guard<std::mutex> lock(mutex_);
  calls().record("unlock");
  handles_.insert(handle);
  return unlock_status_;
}

}  // namespace doubles

using doubles::board;

int Radalt_Init() {
  return board ? board->init() : -1;
}

int Radalt_Read(int handle, unsigned int space, unsigned int address, unsigned int* value) {
  return board ? board->read(handle, space, address, value) : -1;
}

int Radalt_Write(int handle, unsigned int space, unsigned int address, unsigned int value) {
  return board ? board->write(handle, space, address, value) : -1;
}

int Radalt_LockGet(int handle) {
  return board ? board->lock(handle) : -1;
}

int Radalt_LockPut(int handle) {
  return board ? board->unlock(handle) : -1;
}
