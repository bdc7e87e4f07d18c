#include "tests/unit/handheld/timed_waits.h"

#include <dlfcn.h>
#include <pthread.h>

#include <ctime>
#include <mutex>
#include <utility>

namespace doubles {

namespace {

using Action = std::function<void(std::chrono::nanoseconds)>;

std::mutex& guard() {
  static auto& mutex = *new std::mutex;
  return mutex;
}

Action& watching() {
  static auto& action = *new Action;
  return action;
}

/// The program or library that the address lies in.
void* module_of(const void* address) {
  Dl_info info{};
  dladdr(address, &info);
  return info.dli_fbase;
}

void begin(const timespec& deadline) {
  Action action;
  {
    const std::lock_guard<std::mutex> lock(guard());
    action = watching();
  }
  if (!action) {
    return;
  }
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  action(std::chrono::seconds(deadline.tv_sec - now.tv_sec) + std::chrono::nanoseconds(deadline.tv_nsec - now.tv_nsec));
}

}  // namespace

WatchedTimedWaits::WatchedTimedWaits(Action action) {
  const std::lock_guard<std::mutex> lock(guard());
  watching() = std::move(action);
}

WatchedTimedWaits::~WatchedTimedWaits() {
  const std::lock_guard<std::mutex> lock(guard());
  watching() = nullptr;
}

}  // namespace doubles

extern "C" int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* deadline) {
  using Wait = int (*)(pthread_cond_t*, pthread_mutex_t*, const timespec*);
  static const auto real = reinterpret_cast<Wait>(dlsym(RTLD_NEXT, "pthread_cond_timedwait"));
  if (doubles::module_of(__builtin_return_address(0)) ==
      doubles::module_of(reinterpret_cast<const void*>(&doubles::begin))) {
    doubles::begin(*deadline);
  }
  return real(condition, mutex, deadline);
}
