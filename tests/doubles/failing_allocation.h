#pragma once

#include <cstddef>

/// Replaces operator new by a version that tests can make fail. Linking this double replaces it for the whole program.
namespace doubles {

/// The `nth` allocation that this thread makes from now on throws std::bad_alloc, once. One at a time per thread.
class FailingAllocation {
public:
  /// `size`: only allocations of that many bytes count; 0: all do.
  explicit FailingAllocation(unsigned int nth, std::size_t size = 0);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// Whether the allocation was made and failed.
  bool has_failed() const;
};

/// Watches one allocation of the whole program until it is released. One at a time.
class ReleaseWatch {
public:
  /// The next allocation of that many bytes that this thread makes.
  explicit ReleaseWatch(std::size_t size);
  ~ReleaseWatch();
  ReleaseWatch(const ReleaseWatch&) = delete;
  ReleaseWatch& operator=(const ReleaseWatch&) = delete;

  /// Whether the allocation has been made.
  bool has_begun() const;
  /// Whether it has been released since; by any thread.
  bool has_ended() const;
  /// From now on its release ends the process with that status.
  void ends_process(int status);
};

/// Number of unreleased allocations by operator new in the whole program.
long living_allocations();

}  // namespace doubles
