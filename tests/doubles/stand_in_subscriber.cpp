#include "tests/doubles/dds_stand_in_state.h"

namespace doubles {

namespace {

using State = std::shared_ptr<DdsStandIn::State>;

std::atomic<unsigned int> living_readers{0};

class StandInSubscriber : public virtual OpenDDS::DCPS::LocalObject<DDS::Subscriber> {
public:
  StandInSubscriber(const State& state, DDS::Subscriber_ptr real) : state_(state), real_(real) {}

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

  DDS::ReturnCode_t enable() override { return real_->enable(); }
  DDS::InstanceHandle_t get_instance_handle() override { return real_->get_instance_handle(); }
  DDS::ReturnCode_t delete_datareader(DDS::DataReader_ptr reader) override { return real_->delete_datareader(reader); }
  DDS::DataReader_ptr lookup_datareader(const char* topic) override { return real_->lookup_datareader(topic); }
  DDS::ReturnCode_t get_qos(DDS::SubscriberQos& qos) override { return real_->get_qos(qos); }
  DDS::DomainParticipant_ptr get_participant() override { return real_->get_participant(); }
  DDS::ReturnCode_t set_default_datareader_qos(const DDS::DataReaderQos& qos) override {
    return real_->set_default_datareader_qos(qos);
  }

private:
  State state_;
  DDS::Subscriber_var real_;
};

}  // namespace

DDS::Subscriber_ptr new_stand_in_subscriber(const State& state, DDS::Subscriber_ptr real) {
  return new StandInSubscriber(state, real);
}

DDS::Subscriber_ptr behind(DDS::Subscriber_ptr subscriber) {
  const auto* const stand_in = dynamic_cast<StandInSubscriber*>(subscriber);
  return stand_in ? stand_in->real() : subscriber;
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

DDS::ReturnCode_t ScriptedReader::enable() {
  return DDS::RETCODE_OK;
}
DDS::InstanceHandle_t ScriptedReader::get_instance_handle() {
  return DDS::HANDLE_NIL;
}
DDS::ReturnCode_t ScriptedReader::get_qos(DDS::DataReaderQos&) {
  return DDS::RETCODE_UNSUPPORTED;
}
DDS::TopicDescription_ptr ScriptedReader::get_topicdescription() {
  return DDS::TopicDescription::_nil();
}
DDS::Subscriber_ptr ScriptedReader::get_subscriber() {
  return DDS::Subscriber::_nil();
}
DDS::ReturnCode_t ScriptedReader::get_subscription_matched_status(DDS::SubscriptionMatchedStatus&) {
  return DDS::RETCODE_UNSUPPORTED;
}

}  // namespace doubles
