#include "tests/doubles/fake_dds_state.h"

namespace doubles {

namespace {

using State = std::shared_ptr<FakeDds::State>;

class FakeParticipant : public FakeParticipantBase {
public:
  FakeParticipant(const State& state, DDS::DomainParticipant_ptr real)
      : state_(state), real_(DDS::DomainParticipant::_duplicate(real)) {}

  DDS::Publisher_ptr create_publisher(const DDS::PublisherQos& qos, DDS::PublisherListener_ptr listener,
                                      DDS::StatusMask mask) override {
    state_->made_with(listener, mask);
    if (!state_->begin("create_publisher")) {
      return DDS::Publisher::_nil();
    }
    return new_fake_publisher(state_, real_->create_publisher(qos, listener, mask));
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
    return new_fake_subscriber(state_, real_->create_subscriber(qos, listener, mask));
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
    share_type(real_.in(), type);
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

FakeDds::FakeDds(DDS::DomainParticipant_ptr real)
    : state_(std::make_shared<State>()), participant_(new FakeParticipant(state_, real)) {}

FakeDds::~FakeDds() = default;

FakeDds& FakeDds::refuses(const std::string& step) {
  state_->refuse(step);
  return *this;
}

FakeDds& FakeDds::runs_first(const std::string& step, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  state_->first[step] = std::move(action);
  return *this;
}

FakeDds& FakeDds::runs_last(const std::string& step, std::function<void()> action) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  state_->last[step] = std::move(action);
  return *this;
}

FakeDds& FakeDds::hands_out(DDS::DataReader_ptr reader) {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  state_->handed_out = reader;
  return *this;
}

DDS::DomainParticipant_ptr FakeDds::participant() const {
  return participant_.in();
}

DDS::DataWriterQos FakeDds::writer_qos() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->writer_qos;
}

DDS::DataReaderQos FakeDds::reader_qos() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->reader_qos;
}

DDS::DataReaderListener_ptr FakeDds::reader_listener() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return DDS::DataReaderListener::_duplicate(state_->reader_listener.in());
}

std::set<DDS::StatusMask> FakeDds::masks() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->masks;
}

unsigned int FakeDds::living_writers() const {
  return state_->living_writers;
}

bool FakeDds::listeners_given() const {
  const std::lock_guard<std::mutex> lock(state_->mutex);
  return state_->listeners_given;
}

}  // namespace doubles
