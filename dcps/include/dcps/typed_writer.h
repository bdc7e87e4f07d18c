#pragma once

#include <dcps/writer.h>

namespace dcps {

/// The writer of one topic type. `Interface` is the type's generated writer interface.
template <typename Message, typename Interface>
class TypedWriter final : public virtual OpenDDS::DCPS::LocalObject<Interface>, public DataWriterImpl {
public:
  DDS::InstanceHandle_t register_instance(const Message& instance) override { return register_sample(&instance); }
  DDS::ReturnCode_t unregister_instance(const Message& instance, DDS::InstanceHandle_t handle) override {
    return unregister_sample(&instance, handle);
  }
  DDS::ReturnCode_t write(const Message& instance_data, DDS::InstanceHandle_t handle) override {
    return write_sample(&instance_data, handle);
  }
  DDS::ReturnCode_t dispose(const Message& instance_data, DDS::InstanceHandle_t instance_handle) override {
    return dispose_sample(&instance_data, instance_handle);
  }
  DDS::InstanceHandle_t lookup_instance(const Message&) override { return registered_instance(); }
};

}  // namespace dcps
