#pragma once

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsTypeSupportExtC.h>

struct dds_topic_descriptor;

namespace OpenDDS::DCPS {

/// What the type supports of all topic types have in common.
class __attribute__((visibility("default"))) TypeSupportImpl : public virtual LocalObject<TypeSupport> {
public:
  DDS::ReturnCode_t register_type(DDS::DomainParticipant_ptr participant, const char* type_name) override;
  DDS::ReturnCode_t unregister_type(DDS::DomainParticipant_ptr participant, const char* type_name) override;
  char* get_type_name() override;
  CORBA::Boolean has_dcps_key() override { return false; }

  /// The type's description for Cyclone; lives as long as the process.
  virtual const dds_topic_descriptor& descriptor() const = 0;

private:
  virtual const char* default_type_name() const = 0;
};

}  // namespace OpenDDS::DCPS
