#include "dcps/src/publisher.h"

#include <algorithm>

#include "dcps/src/engine.h"
#include "dcps/src/qos.h"
#include "dcps/src/thread_role.h"
#include "dcps/src/topic.h"

namespace dcps {

PublisherImpl::PublisherImpl(ParticipantImpl& participant)
    : entity_handle_(next_instance_handle()),
      participant_(add_reference(&participant)),
      writer_qos_(initial_writer_qos()) {}

PublisherImpl::~PublisherImpl() = default;

bool PublisherImpl::open() {
  const dds_entity_t publisher = dds_create_publisher(participant_->cyclone(), nullptr, nullptr);
  if (publisher < 0) {
    return false;
  }
  publisher_ = publisher;
  return true;
}

void PublisherImpl::close() {
  delete_contained_entities();
  const dds_entity_t publisher = publisher_.exchange(0);
  if (publisher > 0) {
    delete_in_cyclone(publisher, this, participant_->delivery());
  }
}

bool PublisherImpl::is_clean() {
  const std::lock_guard lock(mutex_);
  return writers_.empty();
}

DDS::DataWriterQos PublisherImpl::resolve(const DDS::DataWriterQos& qos, const TopicImpl& topic) {
  const std::lock_guard lock(mutex_);
  if (is_marked_default(qos)) {
    return writer_qos_;
  }
  if (!is_marked_use_topic(qos)) {
    return qos;
  }
  DDS::DataWriterQos resolved = writer_qos_;
  copy_from_topic(resolved, topic.qos());
  return resolved;
}

DDS::DataWriter_ptr PublisherImpl::create_datawriter(DDS::Topic_ptr topic, const DDS::DataWriterQos& qos,
                                                     DDS::DataWriterListener_ptr listener, DDS::StatusMask mask) {
  const Reference<TopicImpl> known_topic = narrow<TopicImpl>(topic);
  if (CORBA::is_nil(known_topic) || known_topic->owner() != participant_.in()) {
    return DDS::DataWriter::_nil();
  }
  const DDS::DataWriter_var made = known_topic->type_support().create_datawriter();
  const Reference<DataWriterImpl> writer = narrow<DataWriterImpl>(made.in());
  if (!writer->open(*this, *known_topic.in(), resolve(qos, *known_topic.in()), listener, mask)) {
    return DDS::DataWriter::_nil();
  }
  const std::lock_guard lock(mutex_);
  writers_.push_back(writer);
  return DDS::DataWriter::_duplicate(made.in());
}

DDS::ReturnCode_t PublisherImpl::delete_datawriter(DDS::DataWriter_ptr writer) {
  const Reference<DataWriterImpl> known = narrow<DataWriterImpl>(writer);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  const DDS::Publisher_var owner = known->get_publisher();
  if (owner.in() != static_cast<DDS::Publisher_ptr>(this)) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  {
    const std::lock_guard lock(mutex_);
    const auto entry = std::find_if(writers_.begin(), writers_.end(),
                                    [&](const auto& candidate) { return candidate.in() == known.in(); });
    if (entry == writers_.end()) {
      return DDS::RETCODE_ERROR;
    }
    writers_.erase(entry);
  }
  known->close();
  return DDS::RETCODE_OK;
}

DDS::DataWriter_ptr PublisherImpl::lookup_datawriter(const char* topic_name) {
  const std::lock_guard lock(mutex_);
  for (const auto& writer : writers_) {
    const DDS::Topic_var topic = writer->get_topic();
    const CORBA::String_var name = topic->get_name();
    if (std::string(name.in()) == topic_name) {
      return DDS::DataWriter::_duplicate(writer.in());
    }
  }
  return DDS::DataWriter::_nil();
}

DDS::ReturnCode_t PublisherImpl::delete_contained_entities() {
  std::vector<Reference<DataWriterImpl>> writers;
  {
    const std::lock_guard lock(mutex_);
    writers.swap(writers_);
  }
  for (const auto& writer : writers) {
    writer->close();
  }
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t PublisherImpl::get_qos(DDS::PublisherQos& qos) {
  qos = {};
  return DDS::RETCODE_OK;
}

DDS::DomainParticipant_ptr PublisherImpl::get_participant() {
  return DDS::DomainParticipant::_duplicate(participant_.in());
}

DDS::ReturnCode_t PublisherImpl::set_default_datawriter_qos(const DDS::DataWriterQos& qos) {
  if (is_marked_default(qos) || is_marked_use_topic(qos)) {
    return DDS::RETCODE_INCONSISTENT_POLICY;
  }
  const std::lock_guard lock(mutex_);
  writer_qos_ = qos;
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t PublisherImpl::get_default_datawriter_qos(DDS::DataWriterQos& qos) {
  const std::lock_guard lock(mutex_);
  qos = writer_qos_;
  return DDS::RETCODE_OK;
}

}  // namespace dcps
