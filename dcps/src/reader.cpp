#include <dcps/reader.h>

#include "dcps/src/arrivals.h"
#include "dcps/src/callback_order.h"
#include "dcps/src/engine.h"
#include "dcps/src/listener_calls.h"
#include "dcps/src/qos.h"
#include "dcps/src/reader_events.h"
#include "dcps/src/statuses.h"
#include "dcps/src/subscriber.h"
#include "dcps/src/thread_role.h"
#include "dcps/src/topic.h"

namespace dcps {

DataReaderImpl::DataReaderImpl(std::size_t sample_size)
    : entity_handle_(next_instance_handle()),
      arrivals_(std::make_unique<Arrivals>(sample_size, next_instance_handle())) {}

DataReaderImpl::~DataReaderImpl() {
  CallbackOrder::enter(this);
}

bool DataReaderImpl::open(SubscriberImpl& subscriber, TopicImpl& topic, const DDS::DataReaderQos& qos,
                          DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) {
  qos_ = qos;
  subscriber_ = add_reference(&subscriber);
  topic_ = add_reference(&topic);
  listener_ = listener;
  calls_ = std::make_unique<ListenerCalls>(subscriber.participant().delivery(), listener);
  arrivals_->set_filter(std::chrono::nanoseconds(to_cyclone(qos.time_based_filter.minimum_separation)),
                        qos.reliability.kind == DDS::RELIABLE_RELIABILITY_QOS);
  const CycloneQos cyclone_qos = to_cyclone(qos);
  if (CORBA::is_nil(listener)) {
    mask = OpenDDS::DCPS::NO_STATUS_MASK;
  }
  tells_of_data_ = (mask & DDS::DATA_AVAILABLE_STATUS) != 0;
  // The filter goes by the times of arrival, so it has to see each sample when it comes.
  const CycloneListener events = ReaderEvents::listener_for(*this, mask | DDS::DATA_AVAILABLE_STATUS);
  CallbackOrder::leave(this);
  const UserCall call;
  const dds_entity_t reader = dds_create_reader(subscriber.cyclone(), topic.cyclone(), cyclone_qos.get(), events.get());
  if (reader < 0) {
    return false;
  }
  topic.add_user();
  reader_ = reader;
  return true;
}

void DataReaderImpl::close() {
  const dds_entity_t reader = reader_.exchange(0);
  if (reader <= 0) {
    return;
  }
  calls_->close();
  delete_in_cyclone(reader, this, subscriber_->participant().delivery());
  topic_->remove_user();
}

void DataReaderImpl::data_arrived(int reader) {
  const auto held_until = arrivals_->collect(reader);
  if (held_until) {
    calls_->post_at(*held_until, [kept = add_reference(this)] { kept->held_time_over(); });
  }
  if (!tells_of_data_ || !arrivals_->begin_notifying()) {
    return;
  }
  if (listener_has_returned_ && !UserCall::on_this_thread()) {
    const EngineCall call;
    const auto kept = add_reference(this);
    notify_all();
    return;
  }
  calls_->post([kept = add_reference(this)] { kept->notify_all(); });
}

void DataReaderImpl::held_time_over() {
  arrivals_->release_held();
  if (tells_of_data_ && arrivals_->begin_notifying()) {
    notify_all();
  }
}

void DataReaderImpl::notify_all() noexcept {
  bool open = true;
  while (open && arrivals_->next_notification()) {
    open = calls_->call([this] { listener_->on_data_available(this); });
    listener_has_returned_ = true;
  }
}

DDS::ReturnCode_t DataReaderImpl::take_sample(void* sample, DDS::SampleInfo& info) {
  return arrivals_->take(reader_, sample, info) ? DDS::RETCODE_OK : DDS::RETCODE_NO_DATA;
}

DDS::ReturnCode_t DataReaderImpl::enable() {
  return DDS::RETCODE_OK;
}

DDS::InstanceHandle_t DataReaderImpl::get_instance_handle() {
  return entity_handle_;
}

DDS::ReturnCode_t DataReaderImpl::get_qos(DDS::DataReaderQos& qos) {
  qos = qos_;
  return DDS::RETCODE_OK;
}

DDS::TopicDescription_ptr DataReaderImpl::get_topicdescription() {
  return DDS::TopicDescription::_duplicate(topic_.in());
}

DDS::Subscriber_ptr DataReaderImpl::get_subscriber() {
  return DDS::Subscriber::_duplicate(subscriber_.in());
}

DDS::ReturnCode_t DataReaderImpl::get_subscription_matched_status(DDS::SubscriptionMatchedStatus& status) {
  dds_subscription_matched_status_t cyclone{};
  const DDS::ReturnCode_t result = to_return_code(dds_get_subscription_matched_status(reader_, &cyclone));
  if (result == DDS::RETCODE_OK) {
    status = to_dcps(cyclone);
  }
  return result;
}

}  // namespace dcps
