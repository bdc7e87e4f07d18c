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
  return memory;
}

void release(void* memory) {
  if (memory) {
    --living;
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
