#include "simulator/memory/shared_mutex.h"

#include <cerrno>
#include <system_error>

namespace simulator::memory {
namespace {

void require(int error, const char* what) {
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), what);
  }
}

}  // namespace

SharedMutex::SharedMutex(Kind kind) {
  pthread_mutexattr_t attributes;
  require(pthread_mutexattr_init(&attributes), "mutex attributes");
  pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
  pthread_mutexattr_settype(&attributes, kind == Kind::CHECKED ? PTHREAD_MUTEX_ERRORCHECK : PTHREAD_MUTEX_NORMAL);
  const int error = pthread_mutex_init(&mutex_, &attributes);
  pthread_mutexattr_destroy(&attributes);
  require(error, "process-shared mutex");
}

void SharedMutex::lock() {
  require(take(), "taking a process-shared mutex");
}

void SharedMutex::unlock() {
  require(give(), "giving a process-shared mutex back");
}

int SharedMutex::take() noexcept {
  const int error = pthread_mutex_lock(&mutex_);
  return error == EOWNERDEAD ? pthread_mutex_consistent(&mutex_) : error;
}

int SharedMutex::try_take() noexcept {
  const int error = pthread_mutex_trylock(&mutex_);
  return error == EOWNERDEAD ? pthread_mutex_consistent(&mutex_) : error;
}

int SharedMutex::give() noexcept {
  return pthread_mutex_unlock(&mutex_);
}

}  // namespace simulator::memory
