#pragma once

#include <pthread.h>

namespace simulator::memory {

/// A mutex in shared memory that survives the death of its holder: the next taker gets it and what it guards is taken
/// as it stands. Lives in the unit's model; meets std::lock_guard's needs.
class SharedMutex {
public:
  /// What taking it twice in one thread, or giving it back without holding it, does.
  enum class Kind {
    PLAIN,   ///< undefined; takers in different process-id namespaces never mistake each other
    CHECKED  ///< refused with an error number
  };

  explicit SharedMutex(Kind kind = Kind::PLAIN);
  SharedMutex(const SharedMutex&) = delete;
  SharedMutex& operator=(const SharedMutex&) = delete;

  void lock();  ///< throws std::system_error where the operating system refuses
  void unlock();

  /// As lock() and unlock(), with the result as an error number: 0; of a CHECKED one also EDEADLK and EPERM.
  int take() noexcept;
  int give() noexcept;

private:
  pthread_mutex_t mutex_;
};

}  // namespace simulator::memory
