#include "host/external_voltage.h"

#include <stdexcept>
#include <thread>

#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace host {
namespace {

constexpr const char* TOPIC_NAME = "Halcyra/local/ExternalVoltage";
constexpr std::chrono::milliseconds POLL_INTERVAL{1};

[[noreturn]] void fail(const char* what) {
  throw std::runtime_error(std::string("external voltage: ") + what);
}

}  // namespace

/// A reader of the topic on the process's participant. Lives until the process ends.
class ExternalVoltage::Reader : private Varnok::DDS_BaseObj {
public:
  Reader() {
    const DDS::DomainParticipant_ptr participant = DdsBase().participant;
    if (CORBA::is_nil(participant)) {
      fail("the process has no DDS participant");
    }
    const Attribute::TypeSupport_var support = new Attribute::TypeSupportImpl;
    if (support->register_type(participant, "") != DDS::RETCODE_OK) {
      fail("cannot register the type");
    }
    const CORBA::String_var type = support->get_type_name();
    topic_ = participant->create_topic(TOPIC_NAME, type.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(),
                                       OpenDDS::DCPS::NO_STATUS_MASK);
    subscriber_ = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, DDS::SubscriberListener::_nil(),
                                                 OpenDDS::DCPS::NO_STATUS_MASK);
    if (CORBA::is_nil(topic_.in()) || CORBA::is_nil(subscriber_.in())) {
      fail("cannot subscribe to the topic");
    }
    DDS::DataReaderQos qos;
    subscriber_->get_default_datareader_qos(qos);
    qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
    qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
    const DDS::DataReader_var untyped = subscriber_->create_datareader(
        topic_.in(), qos, DDS::DataReaderListener::_nil(), OpenDDS::DCPS::NO_STATUS_MASK);
    reader_ = Attribute::DataReader::_narrow(untyped.in());
    if (CORBA::is_nil(reader_.in())) {
      fail("cannot create the reader");
    }
  }

  void take_all() {
    Attribute::Sample sample;
    DDS::SampleInfo info;
    while (reader_->take_next_sample(sample, info) == DDS::RETCODE_OK) {
      if (info.valid_data) {
        value_ = sample.value;
        known_ = true;
      }
    }
  }

  bool known() const noexcept { return known_; }
  bool value() const noexcept { return value_; }

private:
  using Attribute = Varnok::DDS_Attribute<bool>;

  DDS::Topic_var topic_;
  DDS::Subscriber_var subscriber_;
  Attribute::DataReader_var reader_;
  bool known_ = false;
  bool value_ = false;
};

ExternalVoltage::ExternalVoltage() = default;

ExternalVoltage::~ExternalVoltage() = default;

bool ExternalVoltage::value(std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!reader_) {
    reader_ = std::make_unique<Reader>();
  }
  for (;;) {
    reader_->take_all();
    if (reader_->known() || std::chrono::steady_clock::now() >= deadline) {
      return reader_->value();
    }
    std::this_thread::sleep_for(POLL_INTERVAL);
  }
}

}  // namespace host
