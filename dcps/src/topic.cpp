#include "dcps/src/topic.h"

#include "dcps/src/participant.h"

namespace dcps {

namespace {

/// The description of the type under the name that it was registered with.
dds_topic_descriptor_t renamed(const dds_topic_descriptor_t& type, const char* name) {
  return {type.m_size, type.m_align,          type.m_flagset,    type.m_nkeys,
          name,        type.m_keys,           type.m_nops,       type.m_ops,
          type.m_meta, type.type_information, type.type_mapping, type.restrict_data_representation};
}

}  // namespace

TopicImpl::TopicImpl(ParticipantImpl& participant, std::string name, std::string type_name,
                     const Reference<OpenDDS::DCPS::TypeSupportImpl>& type_support)
    : participant_(add_reference(&participant)),
      name_(std::move(name)),
      type_name_(std::move(type_name)),
      type_support_(type_support) {}

TopicImpl::~TopicImpl() = default;

bool TopicImpl::open() {
  const dds_topic_descriptor_t type = renamed(type_support_->descriptor(), type_name_.c_str());
  return adopt(dds_create_topic(participant_->cyclone(), &type, name_.c_str(), nullptr, nullptr));
}

void TopicImpl::close() {
  dds_delete(give_up());
}

}  // namespace dcps
