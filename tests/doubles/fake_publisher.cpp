#include "tests/doubles/fake_dds_state.h"

namespace doubles {

namespace {

using Boolean = Varnok::DDS_Attribute<bool>;

/// Handle of registered instances: a type without key needs none, so the real writer may return HANDLE_NIL.
constexpr DDS::InstanceHandle_t SOME_HANDLE = 4711;
using State = std::shared_ptr<FakeDds::State>;

/// A fake writer in front of a real one. `Base` is FakeWriterBase for a writer without a type.
template <typename Base>
class FakeWriter : public Base {
public:
  FakeWriter(const State& state, DDS::DataWriter_ptr real) : state_(state), real_(real) { ++state_->living_writers; }
  ~FakeWriter() override { --state_->living_writers; }

  DDS::InstanceHandle_t get_instance_handle() override { return real_->get_instance_handle(); }
  DDS::ReturnCode_t get_publication_matched_status(DDS::PublicationMatchedStatus& status) override {
    return real_->get_publication_matched_status(status);
  }

protected:
  State state_;
  DDS::DataWriter_var real_;
};

class FakeBooleanWriter : public FakeWriter<FakeTypedWriterBase<Boolean>> {
public:
  FakeBooleanWriter(const State& state, DDS::DataWriter_ptr real)
      : FakeWriter(state, real), typed_(Boolean::DataWriter::_narrow(real)) {}

  DDS::InstanceHandle_t register_instance(const Boolean::Sample& sample) override {
    if (!state_->begin("register_instance", " " + text_of(sample))) {
      return DDS::HANDLE_NIL;
    }
    typed_->register_instance(sample);
    return SOME_HANDLE;
  }
  DDS::ReturnCode_t unregister_instance(const Boolean::Sample& sample, DDS::InstanceHandle_t handle) override {
    return typed_->unregister_instance(sample, handle);
  }
  DDS::ReturnCode_t write(const Boolean::Sample& sample, DDS::InstanceHandle_t handle) override {
    if (!state_->begin("write", " " + text_of(sample) + " " + std::to_string(handle))) {
      return DDS::RETCODE_ERROR;
    }
    return typed_->write(sample, handle);
  }
  DDS::ReturnCode_t dispose(const Boolean::Sample& sample, DDS::InstanceHandle_t handle) override {
    return typed_->dispose(sample, handle);
  }

private:
  static std::string text_of(const Boolean::Sample& sample) {
    return std::string(sample.value ? "true" : "false") + " " + std::to_string(sample.quality) + " " +
           std::to_string(sample.source) + " " + std::to_string(sample.timestamp);
  }

  Boolean::DataWriter_var typed_;
};

class FakePublisher : public FakePublisherBase {
public:
  FakePublisher(const State& state, DDS::Publisher_ptr real) : state_(state), real_(real) {}

  DDS::Publisher_ptr real() const { return real_.in(); }

  DDS::DataWriter_ptr create_datawriter(DDS::Topic_ptr topic, const DDS::DataWriterQos& qos,
                                        DDS::DataWriterListener_ptr listener, DDS::StatusMask mask) override {
    state_->made_with(listener, mask);
    {
      const std::lock_guard<std::mutex> lock(state_->mutex);
      state_->writer_qos = qos;
    }
    if (!state_->begin("create_datawriter")) {
      return DDS::DataWriter::_nil();
    }
    DDS::DataWriter_ptr const writer = real_->create_datawriter(topic, qos, listener, mask);
    if (state_->is_refused("narrow_writer")) {
      return new FakeWriter<FakeWriterBase>(state_, writer);
    }
    return new FakeBooleanWriter(state_, writer);
  }
  DDS::ReturnCode_t get_default_datawriter_qos(DDS::DataWriterQos& qos) override {
    if (!state_->begin("get_default_datawriter_qos")) {
      return DDS::RETCODE_ERROR;
    }
    return real_->get_default_datawriter_qos(qos);
  }
  DDS::ReturnCode_t delete_contained_entities() override {
    const char step[] = "delete_contained_entities of publisher";
    state_->begin(step);
    return state_->unless_refused(step, real_->delete_contained_entities());
  }

  DDS::InstanceHandle_t get_instance_handle() override { return real_->get_instance_handle(); }
  DDS::ReturnCode_t delete_datawriter(DDS::DataWriter_ptr writer) override { return real_->delete_datawriter(writer); }

private:
  State state_;
  DDS::Publisher_var real_;
};

}  // namespace

DDS::Publisher_ptr new_fake_publisher(const State& state, DDS::Publisher_ptr real) {
  return new FakePublisher(state, real);
}

DDS::Publisher_ptr behind(DDS::Publisher_ptr publisher) {
  const auto* const fake = dynamic_cast<FakePublisher*>(publisher);
  return fake ? fake->real() : publisher;
}

}  // namespace doubles
