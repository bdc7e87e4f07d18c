#include <dds/DCPS/Service_Participant.h>

#include "dcps/src/factory.h"

namespace OpenDDS::DCPS {

int MonitorFactory::service_initialize() {
  return 0;
}

Service_Participant* Service_Participant::instance() {
  static auto* service = new Service_Participant;
  return service;
}

DDS::DomainParticipantFactory_ptr Service_Participant::get_domain_participant_factory() {
  return DDS::DomainParticipantFactory::_duplicate(&dcps::FactoryImpl::instance());
}

}  // namespace OpenDDS::DCPS
