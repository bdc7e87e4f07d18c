#include "tests/doubles/failing_allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace doubles {

namespace {

thread_local unsigned int allocations_left = 0;
thread_local std::size_t counted_size = 0;
thread_local bool failed = false;
std::atomic<long> living{0};

thread_local std::size_t watched_size = 0;
std::atomic<void*> watched{nullptr};
std::atomic<bool> watched_released{false};
/// The status with which its release ends the process; negative: it does not.
std::atomic<int> status_at_release{-1};

void* allocate(std::size_t size) {
  const bool counts = allocations_left > 0 && (counted_size == 0 || size == counted_size);
  if (counts && --allocations_left == 0) {
    failed = true;
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (!memory) {
    throw std::bad_alloc();
  }
  ++living;
  if (watched_size != 0 && size == watched_size) {
    watched_size = 0;
    watched = memory;
  }
  return memory;
}

void release(void* memory) {
  if (memory) {
    --living;
    if (memory == watched) {
      watched_released = true;
      if (status_at_release >= 0) {
        std::_Exit(status_at_release);
      }
    }
  }
  std::free(memory);
}

}  // namespace

FailingAllocation::FailingAllocation(unsigned int nth, std::size_t size) {
  failed = false;
  counted_size = size;
  allocations_left = nth;
}

FailingAllocation::~FailingAllocation() {
  allocations_left = 0;
}

bool FailingAllocation::has_failed() const {
  return failed;
}

ReleaseWatch::ReleaseWatch(std::size_t size) {
  watched = nullptr;
  watched_released = false;
  status_at_release = -1;
  watched_size = size;
}

ReleaseWatch::~ReleaseWatch() {
  status_at_release = -1;
  watched_size = 0;
  watched = nullptr;
}

bool ReleaseWatch::has_begun() const {
  return watched != nullptr;
}

bool ReleaseWatch::has_ended() const {
  return watched_released;
}

void ReleaseWatch::ends_process(int status) {
  status_at_release = status;
}

long living_allocations() {
  return living;
}

}  // namespace doubles

void* operator new(std::size_t size) {
  return doubles::allocate(size);
}
void* operator new[](std::size_t size) {
  return doubles::allocate(size);
}
void operator delete(void* memory) noexcept {
  doubles::release(memory);
}
void operator delete[](void* memory) noexcept {
  doubles::release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  doubles::release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  doubles::release(memory);
}
