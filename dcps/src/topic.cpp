#include "dcps/src/topic.h"

#include "dcps/src/engine.h"
#include "dcps/src/participant.h"
#include "dcps/src/thread_role.h"

namespace dcps {

namespace {

/// The description of the type under the name that it was registered with.
dds_topic_descriptor_t renamed(const dds_topic_descriptor_t& type, const char* name) {
  return {type.m_size, type.m_align,          type.m_flagset,    type.m_nkeys,
          name,        type.m_keys,           type.m_nops,       type.m_ops,
          type.m_meta, type.type_information, type.type_mapping, type.restrict_data_representation};
}

}  // namespace

TopicImpl::TopicImpl(ParticipantImpl& participant, std::string name, std::string type_name, const DDS::TopicQos& qos,
                     Reference<OpenDDS::DCPS::TypeSupportImpl> type_support)
    : entity_handle_(next_instance_handle()),
      participant_(add_reference(&participant)),
      name_(std::move(name)),
      type_name_(std::move(type_name)),
      qos_(qos),
      type_support_(std::move(type_support)) {}

TopicImpl::~TopicImpl() = default;

bool TopicImpl::open() {
  const dds_topic_descriptor_t type = renamed(type_support_->descriptor(), type_name_.c_str());
  const dds_entity_t topic = dds_create_topic(participant_->cyclone(), &type, name_.c_str(), nullptr, nullptr);
  if (topic < 0) {
    return false;
  }
  topic_ = topic;
  return true;
}

void TopicImpl::close() {
  const dds_entity_t topic = topic_.exchange(0);
  if (topic > 0) {
    delete_in_cyclone(topic, this, participant_->delivery());
  }
}

DDS::DomainParticipant_ptr TopicImpl::get_participant() {
  return DDS::DomainParticipant::_duplicate(participant_.in());
}

DDS::ReturnCode_t TopicImpl::get_qos(DDS::TopicQos& qos) {
  qos = qos_;
  return DDS::RETCODE_OK;
}

}  // namespace dcps
