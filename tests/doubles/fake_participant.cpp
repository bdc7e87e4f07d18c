#include "tests/doubles/fake_dds_state.h"

namespace doubles {

namespace {

using State = std::shared_ptr<DdsStandIn::State>;

class StandInParticipant : public virtual OpenDDS::DCPS::LocalObject<DDS::DomainParticipant> {
public:
  StandInParticipant(const State& state, DDS::DomainParticipant_ptr real)
      : state_(state), real_(DDS::DomainParticipant::_duplicate(real)) {}

  DDS::Publisher_ptr create_publisher(const DDS::PublisherQos& qos, DDS::PublisherListener_ptr listener,
                                      DDS::StatusMask mask) override {
    state_->made_with(listener, mask);
    if (!state_->begin("create_publisher")) {
      return DDS::Publisher::_nil();
    }
    return new_stand_in_publisher(state_, real_->create_publisher(qos, listener, mask));
  }
  DDS::ReturnCode_t delete_publisher(DDS::Publisher_ptr publisher) override {
    state_->begin("delete_publisher");
    return state_->unless_refused("delete_publisher", real_->delete_publisher(behind(publisher)));
  }
  DDS::Subscriber_ptr create_subscriber(const DDS::SubscriberQos& qos, DDS::SubscriberListener_ptr listener,
                                        DDS::StatusMask mask) override {
    state_->made_with(listener, mask);
    if (!state_->begin("create_subscriber")) {
      return DDS::Subscriber::_nil();
    }
    return new_stand_in_subscriber(state_, real_->create_subscriber(qos, listener, mask));
  }
  DDS::ReturnCode_t delete_subscriber(DDS::Subscriber_ptr subscriber) override {
    state_->begin("delete_subscriber");
    return state_->unless_refused("delete_subscriber", real_->delete_subscriber(behind(subscriber)));
  }
  DDS::Topic_ptr create_topic(const char* name, const char* type, const DDS::TopicQos& qos,
                              DDS::TopicListener_ptr listener, DDS::StatusMask mask) override {
    state_->made_with(listener, mask);
    if (!state_->begin("create_topic", std::string(" ") + name + " " + type)) {
      return DDS::Topic::_nil();
    }
    return real_->create_topic(name, type, qos, listener, mask);
  }
  DDS::ReturnCode_t delete_topic(DDS::Topic_ptr topic) override {
    const CORBA::String_var name = topic->get_name();
    state_->begin("delete_topic", std::string(" ") + name.in());
    return state_->unless_refused("delete_topic", real_->delete_topic(topic));
  }

  DDS::InstanceHandle_t get_instance_handle() override { return real_->get_instance_handle(); }
  DDS::ReturnCode_t delete_contained_entities() override { return real_->delete_contained_entities(); }
  DDS::DomainId_t get_domain_id() override { return real_->get_domain_id(); }

private:
  State state_;
  DDS::DomainParticipant_var real_;
};

}  // namespace

DdsStandIn::DdsStandIn(DDS::DomainParticipant_ptr real)
    : state_(std::make_shared<State>()), participant_(new StandInParticipant(state_, real)) {}

DdsStandIn::~DdsStandIn() = default;

DdsStandIn& DdsStandIn::refuses(const std::string& step) {
  state_->refuse(step);
  return *this;
}

DdsStandIn& DdsStandIn::runs_first(const std::string& step, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  state_->first[step] = std::move(action);
  return *this;
}

DdsStandIn& DdsStandIn::runs_last(const std::string& step, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  state_->last[step] = std::move(action);
  return *this;
}

DdsStandIn& DdsStandIn::hands_out(DDS::DataReader_ptr reader) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  state_->handed_out = reader;
  return *this;
}

DDS::DomainParticipant_ptr DdsStandIn::participant() const {
  return participant_.in();
}

DDS::DataWriterQos DdsStandIn::writer_qos() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->writer_qos;
}

DDS::DataReaderQos DdsStandIn::reader_qos() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->reader_qos;
}

DDS::DataReaderListener_ptr DdsStandIn::reader_listener() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return DDS::DataReaderListener::_duplicate(state_->reader_listener.in());
}

std::set<DDS::StatusMask> DdsStandIn::masks() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->masks;
}

unsigned int DdsStandIn::living_writers() const {
  return state_->living_writers;
}

bool DdsStandIn::listeners_given() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->listeners_given;
}

}  // namespace doubles
