#include "dcps/src/factory.h"

#include <algorithm>

namespace dcps {

FactoryImpl& FactoryImpl::instance() {
  static auto* factory = new FactoryImpl;
  return *factory;
}

DDS::DomainParticipant_ptr FactoryImpl::create_participant(DDS::DomainId_t domain, const DDS::DomainParticipantQos&,
                                                           DDS::DomainParticipantListener_ptr listener,
                                                           DDS::StatusMask) {
  if (!CORBA::is_nil(listener)) {
    return DDS::DomainParticipant::_nil();
  }
  const Reference<ParticipantImpl> participant = new ParticipantImpl(domain);
  if (!participant->open()) {
    return DDS::DomainParticipant::_nil();
  }
  const std::lock_guard lock(mutex_);
  participants_.push_back(participant);
  return DDS::DomainParticipant::_duplicate(participant.in());
}

DDS::ReturnCode_t FactoryImpl::delete_participant(DDS::DomainParticipant_ptr participant) {
  if (CORBA::is_nil(participant)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  const Reference<ParticipantImpl> known = narrow<ParticipantImpl>(participant);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  if (!known->is_clean()) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  {
    const std::lock_guard lock(mutex_);
    const auto entry = std::find_if(participants_.begin(), participants_.end(),
                                    [&](const auto& candidate) { return candidate.in() == known.in(); });
    if (entry == participants_.end()) {
      return DDS::RETCODE_ERROR;
    }
    participants_.erase(entry);
  }
  known->delete_contained_entities();
  known->close();
  return DDS::RETCODE_OK;
}

DDS::DomainParticipant_ptr FactoryImpl::lookup_participant(DDS::DomainId_t domain) {
  const std::lock_guard lock(mutex_);
  for (const auto& participant : participants_) {
    if (participant->get_domain_id() == domain) {
      return DDS::DomainParticipant::_duplicate(participant.in());
    }
  }
  return DDS::DomainParticipant::_nil();
}

DDS::ReturnCode_t FactoryImpl::get_default_participant_qos(DDS::DomainParticipantQos& qos) {
  qos = {};
  return DDS::RETCODE_OK;
}

}  // namespace dcps
