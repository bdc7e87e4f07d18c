#include "dcps/src/subscriber.h"

#include <algorithm>

#include "dcps/src/engine.h"
#include "dcps/src/qos.h"
#include "dcps/src/thread_role.h"
#include "dcps/src/topic.h"

namespace dcps {

SubscriberImpl::SubscriberImpl(ParticipantImpl& participant)
    : entity_handle_(next_instance_handle()),
      participant_(add_reference(&participant)),
      reader_qos_(initial_reader_qos()) {}

SubscriberImpl::~SubscriberImpl() = default;

bool SubscriberImpl::open() {
  const dds_entity_t subscriber = dds_create_subscriber(participant_->cyclone(), nullptr, nullptr);
  if (subscriber < 0) {
    return false;
  }
  subscriber_ = subscriber;
  return true;
}

void SubscriberImpl::close() {
  delete_contained_entities();
  const dds_entity_t subscriber = subscriber_.exchange(0);
  if (subscriber > 0) {
    delete_in_cyclone(subscriber, this, participant_->delivery());
  }
}

bool SubscriberImpl::is_clean() {
  const std::lock_guard lock(mutex_);
  return readers_.empty();
}

DDS::DataReaderQos SubscriberImpl::resolve(const DDS::DataReaderQos& qos, const TopicImpl& topic) {
  const std::lock_guard lock(mutex_);
  if (is_marked_default(qos)) {
    return reader_qos_;
  }
  if (!is_marked_use_topic(qos)) {
    return qos;
  }
  DDS::DataReaderQos resolved = reader_qos_;
  copy_from_topic(resolved, topic.qos());
  return resolved;
}

DDS::DataReader_ptr SubscriberImpl::create_datareader(DDS::TopicDescription_ptr topic, const DDS::DataReaderQos& qos,
                                                      DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) {
  const Reference<TopicImpl> known_topic = narrow<TopicImpl>(topic);
  if (CORBA::is_nil(known_topic) || known_topic->owner() != participant_.in()) {
    return DDS::DataReader::_nil();
  }
  const DDS::DataReader_var made = known_topic->type_support().create_datareader();
  const Reference<DataReaderImpl> reader = narrow<DataReaderImpl>(made.in());
  if (!reader->open(*this, *known_topic.in(), resolve(qos, *known_topic.in()), listener, mask)) {
    return DDS::DataReader::_nil();
  }
  const std::lock_guard lock(mutex_);
  readers_.push_back(reader);
  return DDS::DataReader::_duplicate(made.in());
}

DDS::ReturnCode_t SubscriberImpl::delete_datareader(DDS::DataReader_ptr reader) {
  const Reference<DataReaderImpl> known = narrow<DataReaderImpl>(reader);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  const DDS::Subscriber_var owner = known->get_subscriber();
  if (owner.in() != static_cast<DDS::Subscriber_ptr>(this)) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  {
    const std::lock_guard lock(mutex_);
    const auto entry = std::find_if(readers_.begin(), readers_.end(),
                                    [&](const auto& candidate) { return candidate.in() == known.in(); });
    if (entry == readers_.end()) {
      return DDS::RETCODE_ERROR;
    }
    readers_.erase(entry);
  }
  known->close();
  return DDS::RETCODE_OK;
}

DDS::DataReader_ptr SubscriberImpl::lookup_datareader(const char* topic_name) {
  const std::lock_guard lock(mutex_);
  for (const auto& reader : readers_) {
    const DDS::TopicDescription_var topic = reader->get_topicdescription();
    const CORBA::String_var name = topic->get_name();
    if (std::string(name.in()) == topic_name) {
      return DDS::DataReader::_duplicate(reader.in());
    }
  }
  return DDS::DataReader::_nil();
}

DDS::ReturnCode_t SubscriberImpl::delete_contained_entities() {
  std::vector<Reference<DataReaderImpl>> readers;
  {
    const std::lock_guard lock(mutex_);
    readers.swap(readers_);
  }
  for (const auto& reader : readers) {
    reader->close();
  }
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t SubscriberImpl::get_qos(DDS::SubscriberQos& qos) {
  qos = {};
  return DDS::RETCODE_OK;
}

DDS::DomainParticipant_ptr SubscriberImpl::get_participant() {
  return DDS::DomainParticipant::_duplicate(participant_.in());
}

DDS::ReturnCode_t SubscriberImpl::set_default_datareader_qos(const DDS::DataReaderQos& qos) {
  if (is_marked_default(qos) || is_marked_use_topic(qos)) {
    return DDS::RETCODE_INCONSISTENT_POLICY;
  }
  const std::lock_guard lock(mutex_);
  reader_qos_ = qos;
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t SubscriberImpl::get_default_datareader_qos(DDS::DataReaderQos& qos) {
  const std::lock_guard lock(mutex_);
  qos = reader_qos_;
  return DDS::RETCODE_OK;
}

}  // namespace dcps
