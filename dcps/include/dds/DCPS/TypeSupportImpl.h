#pragma once

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsTopicC.h>

struct dds_topic_descriptor;

namespace OpenDDS::DCPS {

/// Base of the generated type supports.
class __attribute__((visibility("default"))) TypeSupportImpl : public virtual LocalObject<DDS::TypeSupport> {
public:
  DDS::ReturnCode_t register_type(DDS::DomainParticipant_ptr participant, const char* type_name) override;
  char* get_type_name() override;

  /// An entity of the type, in no domain yet. The caller owns the returned reference.
  virtual DDS::DataWriter_ptr create_datawriter() = 0;
  virtual DDS::DataReader_ptr create_datareader() = 0;

  /// Cyclone's description of the type; lives as long as the process.
  virtual const dds_topic_descriptor& descriptor() const = 0;

private:
  virtual const char* default_type_name() const = 0;
};

}  // namespace OpenDDS::DCPS
