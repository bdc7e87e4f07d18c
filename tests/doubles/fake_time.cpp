#include "tests/doubles/fake_time.h"

#include <pthread.h>
#include <sched.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <map>

namespace doubles {

namespace {

using std::chrono::nanoseconds;

constexpr std::chrono::seconds BEGIN{1275220800};

thread_local PlayedTime::State* played = nullptr;

timespec as_timespec(nanoseconds time) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  return {seconds.count(), (time - seconds).count()};
}

nanoseconds as_duration(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

}  // namespace

class PlayedTime::State {
public:
  nanoseconds read() { return ++now_; }
  void sleep(nanoseconds duration) {
    now_ += duration;
    sleeps_.push_back(std::chrono::round<std::chrono::microseconds>(duration));
    const auto action = actions_.find(sleeps_.size());
    if (action != actions_.end()) {
      action->second();
    }
  }
  void sleep_until(nanoseconds deadline) { sleep(deadline - now_); }

  std::vector<std::chrono::microseconds> sleeps_;
  std::map<std::size_t, std::function<void()>> actions_;

private:
  nanoseconds now_ = BEGIN;
};

PlayedTime::PlayedTime() : state_(std::make_unique<State>()) {
  played = state_.get();
}

PlayedTime::~PlayedTime() {
  played = nullptr;
}

PlayedTime& PlayedTime::runs_in_sleep(unsigned int nth, std::function<void()> action) {
  state_->actions_[state_->sleeps_.size() + nth] = std::move(action);
  return *this;
}

std::vector<std::chrono::microseconds> PlayedTime::sleeps() const {
  return state_->sleeps_;
}

}  // namespace doubles

using doubles::played;

extern "C" {

int __real_clock_gettime(clockid_t clock, timespec* time);
int __real_gettimeofday(timeval* time, void* zone);
int __real_nanosleep(const timespec* duration, timespec* left);
int __real_clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left);
int __real_usleep(useconds_t duration);
int __real_sched_yield();
int __real_pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* deadline);

int __wrap_clock_gettime(clockid_t clock, timespec* time) {
  if (!played) {
    return __real_clock_gettime(clock, time);
  }
  *time = doubles::as_timespec(played->read());
  return 0;
}

int __wrap_gettimeofday(timeval* time, void* zone) {
  if (!played) {
    return __real_gettimeofday(time, zone);
  }
  const timespec now = doubles::as_timespec(played->read());
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return 0;
}

int __wrap_nanosleep(const timespec* duration, timespec* left) {
  if (!played) {
    return __real_nanosleep(duration, left);
  }
  played->sleep(doubles::as_duration(*duration));
  return 0;
}

int __wrap_clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* left) {
  if (!played) {
    return __real_clock_nanosleep(clock, flags, time, left);
  }
  if ((flags & TIMER_ABSTIME) != 0) {
    played->sleep_until(doubles::as_duration(*time));
  } else {
    played->sleep(doubles::as_duration(*time));
  }
  return 0;
}

int __wrap_usleep(useconds_t duration) {
  if (!played) {
    return __real_usleep(duration);
  }
  played->sleep(std::chrono::microseconds(duration));
  return 0;
}

int __wrap_sched_yield() {
  if (!played) {
    return __real_sched_yield();
  }
  played->sleep(doubles::nanoseconds(1));
  return 0;
}

// Boost sleeps by waiting for a condition that is never signalled.
int __wrap_pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* deadline) {
  if (!played) {
    return __real_pthread_cond_timedwait(condition, mutex, deadline);
  }
  played->sleep_until(doubles::as_duration(*deadline));
  return ETIMEDOUT;
}

}  // extern "C"
