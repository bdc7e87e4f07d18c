#pragma once

// Definitions of the templates of dds_subscriber.h.

#include <iostream>

#include <boost/bind/bind.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/thread.hpp>

#include "messaging/connection_failure.h"
#include "messaging/dds_subscriber.h"

namespace Varnok {

template <typename T, typename U>
DDS_SubscriberBase<T, U>::DDS_SubscriberBase(const char* topicName, const boost::function<U>& callback)
    : reader_(new Reader), topic_name_(topicName), callback_(callback), init_done_(false) {}

template <typename T, typename U>
DDS_SubscriberBase<T, U>::~DDS_SubscriberBase() {
  const boost::mutex::scoped_lock one_at_a_time(SerializeSubscriberDestructionMutex);
  waitForInitDone();
  disconnect();
  reader_.reset();
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::InitSubBase(DDS_Subscriber<T>* owner, long minSeparationSec,
                                           unsigned long minSeparationNanosec,
                                           DDS::DurabilityQosPolicyKind durability) {
  const DDS::DomainParticipant_ptr participant = this->DdsBase().participant;
  if (CORBA::is_nil(participant)) {
    messaging::fail_to_connect(std::string(Texts::INIT) + " err: Participant NULL");
  }
  subscriber_ = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, DDS::SubscriberListener::_nil(), ALL_STATUSES);
  if (CORBA::is_nil(subscriber_.in())) {
    messaging::fail_to_connect(std::string(Texts::INIT) + " err: create_subscriber");
  }
  create_topic(participant);
  DDS::Duration_t minimum_separation;
  minimum_separation.sec = static_cast<CORBA::Long>(minSeparationSec);
  minimum_separation.nanosec = static_cast<CORBA::ULong>(minSeparationNanosec);
  create_reader(owner, minimum_separation, durability);
  boost::this_thread::at_thread_exit(boost::bind(&DDS_SubscriberBase::FinishedInitSubBase, this));
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::create_topic(DDS::DomainParticipant_ptr participant) {
  if (reader_->type_support->register_type(participant, "") != DDS::RETCODE_OK) {
    messaging::fail_to_connect(std::string(Texts::INIT) + " err: Osts->register_type");
  }
  const CORBA::String_var type_name = reader_->type_support->get_type_name();
  topic_ = participant->create_topic(topic_name_.c_str(), type_name.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(),
                                     ALL_STATUSES);
  if (CORBA::is_nil(topic_.in())) {
    messaging::fail_to_connect(std::string(Texts::INIT) + " err: Participant->create_topic [" + type_name.in() + "] [" +
                               topic_name_ + "]");
  }
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::create_reader(DDS_Subscriber<T>* owner, const DDS::Duration_t& minimum_separation,
                                             DDS::DurabilityQosPolicyKind durability) {
  // If the default QoS cannot be fetched, the record keeps its initial values; the reader is made anyway.
  DDS::DataReaderQos qos = TheServiceParticipant->initial_DataReaderQos();
  if (subscriber_->get_default_datareader_qos(qos) != DDS::RETCODE_OK) {
    std::cout << "DDS_Subscriber:: ERROR: create_datareader failed" << std::endl;
  }
  qos.durability.kind = durability;
  qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
  qos.time_based_filter.minimum_separation = minimum_separation;
  listener_.dispatch_to(owner);
  data_reader_ = subscriber_->create_datareader(topic_.in(), qos, &listener_, ALL_STATUSES);
  if (CORBA::is_nil(data_reader_.in())) {
    messaging::fail_to_connect(std::string(Texts::INIT) + " err: Subscriber->create_datareader");
  }
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::FinishedInitSubBase() {
  init_done_ = true;
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::waitForInitDone() const {
  while (!init_done_) {
    pause();
  }
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::disconnect() {
  const bool reader_deleted = subscriber_->delete_contained_entities() == DDS::RETCODE_OK;
  reader_->typed_reader = Attribute::DataReader::_nil();
  reader_->type_support = Attribute::TypeSupport::_nil();
  data_reader_ = DDS::DataReader::_nil();
  this->DdsBase().participant->delete_subscriber(subscriber_.in());
  this->DdsBase().participant->delete_topic(topic_.in());
  // A reader that is not deleted keeps its listener forever.
  if (reader_deleted) {
    wait_for_listener();
  }
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::wait_for_listener() const {
  // Deleting a reader does not wait for its running call-back. That thread uses the record, and it releases its
  // reference to the listener, a member here, after the call-back.
  while (listener_.ref_count() > 1) {
    pause();
  }
}

template <typename T, typename U>
void DDS_SubscriberBase<T, U>::pause() {
  boost::this_thread::sleep(boost::get_system_time() + boost::posix_time::microseconds(1000));
}

template <typename T>
DDS_Subscriber<T>::DDS_Subscriber(const char* topicName, const boost::function<void(char const*)>& callback)
    : DDS_SubscriberBase<T, void(char const*)>(topicName, callback) {
  boost::thread start_up(boost::bind(&DDS_Subscriber::InitSubBase, this, this, 0, 0, DDS::VOLATILE_DURABILITY_QOS));
  start_up.detach();
}

template <typename T>
DDS_Subscriber<T>::~DDS_Subscriber() = default;

template <typename T>
void DDS_DataReaderListener<T>::on_data_available(DDS::DataReader_ptr reader) {
  if (!subscriber_) {
    return;
  }
  auto& record = *subscriber_->reader_;
  record.typed_reader = record.narrow(reader);
  if (CORBA::is_nil(record.typed_reader.in())) {
    return;
  }
  DDS::SampleInfo info;
  if (record.typed_reader->take_next_sample(record.sample, info) != DDS::RETCODE_OK) {
    throw Runtime_errors::Generic(std::string(DDS_Subscriber_texts<T>::DATA_AVAILABLE) + " take_next_sample error.");
  }
  if (!info.valid_data) {
    return report_without_data(info.instance_state);
  }
  subscriber_->waitForInitDone();
  subscriber_->callback_(subscriber_->topic_name_.c_str());
}

template <typename T>
void DDS_DataReaderListener<T>::report_without_data(DDS::InstanceStateKind state) {
  const std::string reporter = DDS_Subscriber_texts<T>::DATA_AVAILABLE;
  switch (state) {
    case DDS::NOT_ALIVE_DISPOSED_INSTANCE_STATE:
      std::cout << reporter + " instance is disposed\n" << std::flush;
      return;
    case DDS::NOT_ALIVE_NO_WRITERS_INSTANCE_STATE:
      std::cout << reporter + " instance is unregistered\n" << std::flush;
      return;
    default:
      throw Runtime_errors::Generic(reporter + " ERROR: received unknown instance state");
  }
}

}  // namespace Varnok
