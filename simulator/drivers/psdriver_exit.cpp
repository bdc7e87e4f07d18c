#include "simulator/drivers/psdriver_exit.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace simulator::drivers {
namespace {

/// The callers of the process. Never destroyed: threads may outlive every file-scope object.
struct Callers {
  std::mutex mutex;
  std::vector<Caller*> all;
};

Callers& callers() {
  static Callers& the_callers = *new Callers;
  return the_callers;
}

void silence_all() {
  const std::lock_guard guard(callers().mutex);
  for (Caller* each : callers().all) {
    each->fall_silent();
  }
}

}  // namespace

void silence_at_exit(Caller& caller) {
  static const int registered = std::atexit(silence_all);
  static_cast<void>(registered);
  const std::lock_guard guard(callers().mutex);
  callers().all.push_back(&caller);
}

void forget_at_exit(Caller& caller) {
  const std::lock_guard guard(callers().mutex);
  auto& all = callers().all;
  all.erase(std::remove(all.begin(), all.end(), &caller), all.end());
}

}  // namespace simulator::drivers
