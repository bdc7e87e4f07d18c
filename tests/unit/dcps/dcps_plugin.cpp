// A library whose static initialiser subscribes on a separate thread and waits until a sample has been received.
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace {

using namespace Varnok::QTNN_DDS;

class Listener : public OpenDDS::DCPS::LocalObject<DDS::DataReaderListener> {
public:
  void on_requested_deadline_missed(DDS::DataReader_ptr, const DDS::RequestedDeadlineMissedStatus&) override {}
  void on_requested_incompatible_qos(DDS::DataReader_ptr, const DDS::RequestedIncompatibleQosStatus&) override {}
  void on_sample_rejected(DDS::DataReader_ptr, const DDS::SampleRejectedStatus&) override {}
  void on_liveliness_changed(DDS::DataReader_ptr, const DDS::LivelinessChangedStatus&) override {}
  void on_data_available(DDS::DataReader_ptr reader) override {
    const ATTR_BOOLEANDataReader_var typed = ATTR_BOOLEANDataReader::_narrow(reader);
    ATTR_BOOLEAN sample{};
    DDS::SampleInfo info{};
    if (typed->take_next_sample(sample, info) != DDS::RETCODE_OK || !info.valid_data) {
      return;
    }
    const std::lock_guard lock(mutex_);
    number_ = sample.quality;
    changed_.notify_all();
  }
  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus&) override {}
  void on_sample_lost(DDS::DataReader_ptr, const DDS::SampleLostStatus&) override {}

  int wait_for_number() {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::seconds(10), [&] { return number_ != 0; });
    return number_;
  }

private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int number_ = 0;
};

class Subscription {
public:
  Subscription() {
    participant_ =
        factory_->create_participant(std::atoi(std::getenv("DCPS_PLUGIN_DOMAIN")), PARTICIPANT_QOS_DEFAULT, nullptr, 0);
    start_ = std::thread([this] { subscribe(); });
    number_ = listener_.wait_for_number();
  }
  ~Subscription() { stop(); }

  int number() const { return number_; }
  void stop() {
    if (!start_.joinable()) {
      return;
    }
    start_.join();
    participant_->delete_contained_entities();
    factory_->delete_participant(participant_);
  }

private:
  void subscribe() {
    const ATTR_BOOLEANTypeSupport_var type = new ATTR_BOOLEANTypeSupportImpl;
    type->register_type(participant_, "");
    const CORBA::String_var name = type->get_type_name();
    const DDS::Topic_var topic =
        participant_->create_topic(std::getenv("DCPS_PLUGIN_TOPIC"), name, TOPIC_QOS_DEFAULT, nullptr, 0);
    const DDS::Subscriber_var subscriber = participant_->create_subscriber(SUBSCRIBER_QOS_DEFAULT, nullptr, 0);
    DDS::DataReaderQos qos;
    subscriber->get_default_datareader_qos(qos);
    qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
    qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
    reader_ = subscriber->create_datareader(topic, qos, &listener_, DDS::DATA_AVAILABLE_STATUS);
  }

  Listener listener_;
  DDS::DomainParticipantFactory_var factory_ = TheParticipantFactory;
  DDS::DomainParticipant_var participant_;
  DDS::DataReader_var reader_;
  std::thread start_;
  int number_ = 0;
};

Subscription subscription;

}  // namespace

extern "C" __attribute__((visibility("default"))) int dcps_plugin_number() {
  return subscription.number();
}

extern "C" __attribute__((visibility("default"))) void dcps_plugin_stop() {
  subscription.stop();
}
