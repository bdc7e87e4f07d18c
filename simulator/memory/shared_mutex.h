#pragma once

#include <pthread.h>

namespace simulator::memory {

/// A mutex in shared memory that survives the death of its holder: the next taker gets it, with the guarded data as the
/// holder left it. Part of the unit's model; usable with std::lock_guard.
class SharedMutex {
public:
  /// The effect of taking it twice in one thread, or of releasing it without holding it.
  enum class Kind {
    PLAIN,   ///< undefined; takers in different PID namespaces are never confused
    CHECKED  ///< rejected with an error number
  };

  explicit SharedMutex(Kind kind = Kind::PLAIN);
  SharedMutex(const SharedMutex&) = delete;
  SharedMutex& operator=(const SharedMutex&) = delete;

  void lock();  ///< throws std::system_error if the operating system refuses
  void unlock();

  /// Like lock() and unlock(), but return an error number: 0; if CHECKED, also EDEADLK and EPERM.
  int take() noexcept;
  int give() noexcept;
  /// Like take(), but returns EBUSY if a live thread holds it.
  int try_take() noexcept;

private:
  pthread_mutex_t mutex_;
};

}  // namespace simulator::memory
