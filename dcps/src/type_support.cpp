#include <dds/DCPS/TypeSupportImpl.h>

#include "dcps/src/factory.h"

namespace OpenDDS::DCPS {

DDS::ReturnCode_t TypeSupportImpl::register_type(DDS::DomainParticipant_ptr participant, const char* type_name) {
  if (CORBA::is_nil(participant)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  const auto known = dcps::FactoryImpl::instance().find(participant->get_instance_handle());
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  const bool own_name = type_name == nullptr || type_name[0] == '\0';
  return known->add_type(own_name ? default_type_name() : type_name, *this);
}

char* TypeSupportImpl::get_type_name() {
  return CORBA::string_dup(default_type_name());
}

}  // namespace OpenDDS::DCPS
