#pragma once

#include <dcps/writer.h>

namespace dcps {

/// The writer of one topic type. `Interface` is the type's generated writer interface.
template <typename Message, typename Interface>
class TypedWriter final : public virtual OpenDDS::DCPS::LocalObject<Interface>, public DataWriterImpl {
public:
  DDS::InstanceHandle_t register_instance(const Message& instance) override { return register_sample(&instance); }
  DDS::ReturnCode_t unregister_instance(const Message&, DDS::InstanceHandle_t) override { return unregister(); }
  DDS::ReturnCode_t write(const Message& instance_data, DDS::InstanceHandle_t) override {
    return write_sample(&instance_data);
  }
  DDS::ReturnCode_t dispose(const Message&, DDS::InstanceHandle_t) override { return DataWriterImpl::dispose(); }
};

}  // namespace dcps
