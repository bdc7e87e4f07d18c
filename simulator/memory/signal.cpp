#include "simulator/memory/signal.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <ctime>

namespace simulator::memory {

void Signal::raise() noexcept {
  count_.fetch_add(1, std::memory_order_acq_rel);
  syscall(SYS_futex, &count_, FUTEX_WAKE, INT_MAX, nullptr, nullptr, 0);
}

void Signal::wait(std::uint32_t seen, std::chrono::nanoseconds limit) const noexcept {
  if (limit <= std::chrono::nanoseconds::zero()) {
    return;
  }
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(limit);
  timespec timeout{};
  timeout.tv_sec = static_cast<std::time_t>(seconds.count());
  timeout.tv_nsec = static_cast<long>((limit - seconds).count());
  syscall(SYS_futex, &count_, FUTEX_WAIT, seen, &timeout, nullptr, 0);
}

}  // namespace simulator::memory
