#pragma once

#include <atomic>

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsInfrastructureC.h>

namespace dcps {

/// A number not used in this process before; never HANDLE_NIL.
DDS::InstanceHandle_t next_instance_handle();

/// An entity that stands for one of Cyclone's.
template <typename Interface>
class __attribute__((visibility("default"))) EntityImpl : public virtual OpenDDS::DCPS::LocalObject<Interface> {
public:
  DDS::InstanceHandle_t get_instance_handle() override { return instance_handle_; }

  /// Cyclone's entity; 0 before it is made and after it is deleted.
  int cyclone() const { return cyclone_; }

protected:
  /// Adopts what one of Cyclone's create functions has returned. False if that is an error.
  bool adopt(int created) {
    if (created > 0) {
      cyclone_ = created;
    }
    return created > 0;
  }
  /// Gives up Cyclone's entity, which the caller deletes; 0 if there is none.
  int give_up() { return cyclone_.exchange(0); }

private:
  const DDS::InstanceHandle_t instance_handle_ = next_instance_handle();
  std::atomic<int> cyclone_{0};
};

}  // namespace dcps
