#pragma once

#include "lockerC.h"

namespace Varnok {

/// The framework lock, held from construction to destruction of the object. There is one lock per process: another
/// thread that constructs a Locker waits until the holder destroys its Locker.
class __attribute__((visibility("default"))) Locker {
public:
  /// Takes the lock, waiting without limit.
  Locker();
  /// Gives the lock back and frees the core.
  ~Locker();
  Locker(const Locker&) = delete;
  Locker& operator=(const Locker&) = delete;

  /// Makes the core, the identity by which another engine may act under this lock. A second call does nothing.
  void Init_core() const;
  /// The core, owned by the locker; null while Init_core() has not run.
  const Locker_Core* core() const noexcept { return core_; }

private:
  mutable Locker_Core* core_;
};

}  // namespace Varnok
