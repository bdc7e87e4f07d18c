#pragma once

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace dcps {

/// Tells ThreadSanitizer what Cyclone's locks, which it does not see, bring about: an entity's set-up comes before what
/// Cyclone's threads do with it, and that before its destruction. Does nothing in other builds.
class CallbackOrder {
public:
  /// Before Cyclone learns of the entity, and at the end of each call of Cyclone's.
  static void leave([[maybe_unused]] void* entity) {
#ifdef __SANITIZE_THREAD__
    __tsan_release(entity);
#endif
  }
  /// At the beginning of each call of Cyclone's, and when Cyclone has forgotten the entity.
  static void enter([[maybe_unused]] void* entity) {
#ifdef __SANITIZE_THREAD__
    __tsan_acquire(entity);
#endif
  }

  /// Stands around one call of Cyclone's.
  explicit CallbackOrder(void* entity) : entity_(entity) {
    enter(entity_);
  }
  ~CallbackOrder() {
    leave(entity_);
  }
  CallbackOrder(const CallbackOrder&) = delete;
  CallbackOrder& operator=(const CallbackOrder&) = delete;

private:
  void* const entity_;
};

}  // namespace dcps
