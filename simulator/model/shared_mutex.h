#pragma once

#include <pthread.h>

namespace simulator::model {

/// A mutex in shared memory that survives the death of its holder: the next taker gets it and what it guards is taken
/// as it stands. Lives in the unit's model; meets std::lock_guard's needs.
class SharedMutex {
public:
  SharedMutex();
  SharedMutex(const SharedMutex&) = delete;
  SharedMutex& operator=(const SharedMutex&) = delete;

  void lock();  ///< throws std::system_error where the operating system refuses
  void unlock();

  /// As lock() and unlock(), with the result as an error number: 0, EDEADLK (taken twice by one thread), EPERM (given
  /// back by a thread that does not hold it).
  int try_take() noexcept;
  int try_give() noexcept;

private:
  pthread_mutex_t mutex_;
};

}  // namespace simulator::model
