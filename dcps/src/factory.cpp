#include "dcps/src/factory.h"

namespace dcps {

FactoryImpl& FactoryImpl::instance() {
  static auto* factory = new FactoryImpl;
  return *factory;
}

DDS::DomainParticipant_ptr FactoryImpl::create_participant(DDS::DomainId_t domain, const DDS::DomainParticipantQos&,
                                                           DDS::DomainParticipantListener_ptr listener,
                                                           DDS::StatusMask) {
  const Reference<ParticipantImpl> participant = new ParticipantImpl(domain);
  if (!CORBA::is_nil(listener) || !participant->open()) {
    return DDS::DomainParticipant::_nil();
  }
  participants_.add(*participant.in());
  return DDS::DomainParticipant::_duplicate(participant.in());
}

DDS::ReturnCode_t FactoryImpl::delete_participant(DDS::DomainParticipant_ptr participant) {
  if (CORBA::is_nil(participant)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  return participants_.close_one(participant, [](const ParticipantImpl& known) { return known.is_clean(); });
}

Reference<ParticipantImpl> FactoryImpl::find(DDS::InstanceHandle_t handle) const {
  return participants_.find([&](ParticipantImpl& candidate) { return candidate.get_instance_handle() == handle; });
}

}  // namespace dcps
