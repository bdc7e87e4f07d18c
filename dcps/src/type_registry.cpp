#include "dcps/src/type_registry.h"

#include <dds/DdsDcpsDomainC.h>

#include "dcps/src/references.h"

namespace dcps {

TypeRegistry& TypeRegistry::instance() {
  static auto* registry = new TypeRegistry;
  return *registry;
}

TypeRegistry::Key TypeRegistry::key_of(DDS::DomainParticipant_ptr participant) {
  const DDS::InstanceHandle_t handle = participant->get_instance_handle();
  if (handle == DDS::HANDLE_NIL) {
    return participant;
  }
  return handle;
}

DDS::ReturnCode_t TypeRegistry::add(DDS::DomainParticipant_ptr participant, const std::string& name,
                                    OpenDDS::DCPS::TypeSupportImpl& type) {
  const Key key = key_of(participant);
  const std::lock_guard lock(mutex_);
  const auto [entry, is_new] = participants_[key].try_emplace(name, add_reference(&type));
  if (is_new || &entry->second->descriptor() == &type.descriptor()) {
    return DDS::RETCODE_OK;
  }
  return DDS::RETCODE_ERROR;
}

DDS::ReturnCode_t TypeRegistry::remove(DDS::DomainParticipant_ptr participant, const std::string& name,
                                       OpenDDS::DCPS::TypeSupportImpl& type) {
  const Key key = key_of(participant);
  const std::lock_guard lock(mutex_);
  Types& types = participants_[key];
  const auto entry = types.find(name);
  if (entry == types.end() || &entry->second->descriptor() != &type.descriptor()) {
    return DDS::RETCODE_ERROR;
  }
  types.erase(entry);
  return DDS::RETCODE_OK;
}

void TypeRegistry::remove_all(DDS::DomainParticipant_ptr participant) {
  const Key key = key_of(participant);
  const std::lock_guard lock(mutex_);
  participants_.erase(key);
}

Reference<OpenDDS::DCPS::TypeSupportImpl> TypeRegistry::find(DDS::DomainParticipant_ptr participant,
                                                             const std::string& name) {
  const Key key = key_of(participant);
  const std::lock_guard lock(mutex_);
  const auto types = participants_.find(key);
  if (types == participants_.end()) {
    return {};
  }
  const auto entry = types->second.find(name);
  return entry == types->second.end() ? Reference<OpenDDS::DCPS::TypeSupportImpl>() : entry->second;
}

}  // namespace dcps

namespace OpenDDS::DCPS {

DDS::ReturnCode_t TypeSupportImpl::register_type(DDS::DomainParticipant_ptr participant, const char* type_name) {
  if (CORBA::is_nil(participant)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  const bool own_name = type_name == nullptr || type_name[0] == '\0';
  return dcps::TypeRegistry::instance().add(participant, own_name ? default_type_name() : type_name, *this);
}

DDS::ReturnCode_t TypeSupportImpl::unregister_type(DDS::DomainParticipant_ptr participant, const char* type_name) {
  if (CORBA::is_nil(participant) || type_name == nullptr || type_name[0] == '\0') {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  return dcps::TypeRegistry::instance().remove(participant, type_name, *this);
}

char* TypeSupportImpl::get_type_name() {
  return CORBA::string_dup(default_type_name());
}

}  // namespace OpenDDS::DCPS
