#pragma once

#include <dcps/reader.h>

namespace dcps {

/// The reader of one topic type. `Interface` is the type's generated reader interface.
template <typename Message, typename Interface>
class TypedReader final : public virtual OpenDDS::DCPS::LocalObject<Interface>, public DataReaderImpl {
public:
  TypedReader() : DataReaderImpl(sizeof(Message)) {}

  DDS::ReturnCode_t take_next_sample(Message& received_data, DDS::SampleInfo& sample_info) override {
    return take_sample(&received_data, sample_info);
  }
};

}  // namespace dcps
