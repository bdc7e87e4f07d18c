#pragma once

#include <algorithm>
#include <mutex>
#include <vector>

#include <dds/DdsDcpsInfrastructureC.h>

namespace dcps {

/// The entities that another entity, or the factory, contains. Thread-safe.
template <typename Object>
class Contained {
public:
  void add(Object& object) {
    const std::lock_guard lock(mutex_);
    objects_.push_back(add_reference(&object));
  }

  bool empty() const {
    const std::lock_guard lock(mutex_);
    return objects_.empty();
  }

  /// The first one that matches; nil if none does.
  template <typename Predicate>
  Reference<Object> find(const Predicate& matches) const {
    const std::lock_guard lock(mutex_);
    for (const auto& object : objects_) {
      if (matches(*object.in())) {
        return object;
      }
    }
    return {};
  }

  /// Removes and closes one. Returns RETCODE_ERROR if it is not contained, RETCODE_PRECONDITION_NOT_MET if it is of
  /// this engine but not deletable.
  template <typename Predicate>
  DDS::ReturnCode_t close_one(CORBA::Object_ptr entity, const Predicate& deletable) {
    const Reference<Object> known = narrow<Object>(entity);
    if (CORBA::is_nil(known)) {
      return DDS::RETCODE_ERROR;
    }
    if (!deletable(*known.in())) {
      return DDS::RETCODE_PRECONDITION_NOT_MET;
    }
    if (!remove(*known.in())) {
      return DDS::RETCODE_ERROR;
    }
    known->close();
    return DDS::RETCODE_OK;
  }

  /// Removes and closes them all.
  void close_all() {
    std::vector<Reference<Object>> objects;
    {
      const std::lock_guard lock(mutex_);
      objects.swap(objects_);
    }
    for (const auto& object : objects) {
      object->close();
    }
  }

private:
  bool remove(const Object& object) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(objects_.begin(), objects_.end(),
                                    [&](const auto& candidate) { return candidate.in() == &object; });
    if (found == objects_.end()) {
      return false;
    }
    objects_.erase(found);
    return true;
  }

  mutable std::mutex mutex_;
  std::vector<Reference<Object>> objects_;
};

}  // namespace dcps
