#pragma once

#include <dds/DdsDcpsPublicationC.h>
#include <dds/DdsDcpsSubscriptionC.h>
#include <dds/DdsDcpsTopicC.h>

namespace OpenDDS::DCPS {

DCPS_DECLARE_INTERFACE(TypeSupport);

/// A type support that also makes the writers and readers of its type; publishers and subscribers ask it to.
class __attribute__((visibility("default"))) TypeSupport : public virtual DDS::TypeSupport {
public:
  DCPS_INTERFACE_BODY(TypeSupport)

  /// The caller owns the returned reference. The entity takes no part in any domain until its maker has set it up.
  virtual DDS::DataWriter_ptr create_datawriter() = 0;
  virtual DDS::DataReader_ptr create_datareader() = 0;
  virtual CORBA::Boolean has_dcps_key() = 0;
  /// RETCODE_BAD_PARAMETER: no participant or no name; RETCODE_ERROR: the type is not registered under that name.
  virtual DDS::ReturnCode_t unregister_type(DDS::DomainParticipant_ptr participant, const char* type_name) = 0;
};

}  // namespace OpenDDS::DCPS
