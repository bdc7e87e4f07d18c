#include "tests/doubles/fake_dds_state.h"

namespace doubles {

namespace {

using State = std::shared_ptr<FakeDds::State>;

std::atomic<unsigned int> living_readers{0};

class FakeSubscriber : public FakeSubscriberBase {
public:
  FakeSubscriber(const State& state, DDS::Subscriber_ptr real) : state_(state), real_(real) {}

  DDS::Subscriber_ptr real() const { return real_.in(); }

  DDS::DataReader_ptr create_datareader(DDS::TopicDescription_ptr topic, const DDS::DataReaderQos& qos,
                                        DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) override {
    state_->made_with(DDS::DataReaderListener::_nil(), mask);
    {
      const std::lock_guard<std::mutex> lock(state_->mutex);
      state_->reader_qos = qos;
      state_->reader_listener = DDS::DataReaderListener::_duplicate(listener);
    }
    if (!state_->begin("create_datareader")) {
      return DDS::DataReader::_nil();
    }
    DDS::DataReader_var reader = real_->create_datareader(topic, qos, listener, mask);
    state_->end("create_datareader");
    const std::lock_guard<std::mutex> lock(state_->mutex);
    return CORBA::is_nil(state_->handed_out.in()) ? reader._retn() : state_->handed_out._retn();
  }
  DDS::ReturnCode_t get_default_datareader_qos(DDS::DataReaderQos& qos) override {
    if (!state_->begin("get_default_datareader_qos")) {
      return DDS::RETCODE_ERROR;
    }
    return real_->get_default_datareader_qos(qos);
  }
  DDS::ReturnCode_t delete_contained_entities() override {
    const char step[] = "delete_contained_entities of subscriber";
    state_->begin(step);
    const DDS::ReturnCode_t result = real_->delete_contained_entities();
    {
      const std::lock_guard<std::mutex> lock(state_->mutex);
      state_->reader_listener = DDS::DataReaderListener::_nil();
    }
    return state_->unless_refused(step, result);
  }

  DDS::InstanceHandle_t get_instance_handle() override { return real_->get_instance_handle(); }
  DDS::ReturnCode_t delete_datareader(DDS::DataReader_ptr reader) override { return real_->delete_datareader(reader); }

private:
  State state_;
  DDS::Subscriber_var real_;
};

}  // namespace

DDS::Subscriber_ptr new_fake_subscriber(const State& state, DDS::Subscriber_ptr real) {
  return new FakeSubscriber(state, real);
}

DDS::Subscriber_ptr behind(DDS::Subscriber_ptr subscriber) {
  const auto* const fake = dynamic_cast<FakeSubscriber*>(subscriber);
  return fake ? fake->real() : subscriber;
}

ScriptedReader::ScriptedReader(DDS::ReturnCode_t result, bool valid_data, DDS::InstanceStateKind state)
    : result_(result), valid_data_(valid_data), state_(state) {
  ++living_readers;
}

ScriptedReader::~ScriptedReader() {
  --living_readers;
}

unsigned int ScriptedReader::alive() {
  return living_readers;
}

DDS::ReturnCode_t ScriptedReader::take_next_sample(Varnok::QTNN_DDS::ATTR_VOID&, DDS::SampleInfo& info) {
  ++takes_;
  info.valid_data = valid_data_;
  info.instance_state = state_;
  return result_;
}

DDS::InstanceHandle_t ScriptedReader::get_instance_handle() {
  return DDS::HANDLE_NIL;
}

}  // namespace doubles
