#pragma once

#include <dds/DdsDcpsInfrastructureC.h>

namespace DDS {

/// What a reader is made for.
class __attribute__((visibility("default"))) TopicDescription : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(TopicDescription)

  /// The caller frees both strings with CORBA::string_free.
  virtual char* get_type_name() = 0;
  virtual char* get_name() = 0;
};

class __attribute__((visibility("default"))) TopicListener : public virtual Listener {
public:
  DCPS_INTERFACE_BODY(TopicListener)
};

/// A named channel for samples of one type.
class __attribute__((visibility("default"))) Topic : public virtual Entity, public virtual TopicDescription {
public:
  DCPS_INTERFACE_BODY(Topic)
};

/// Registers one sample type with participants.
class __attribute__((visibility("default"))) TypeSupport : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(TypeSupport)

  /// Registers the type under `type_name`, or under its own name if that is null or empty, with the participant that
  /// has `participant`'s instance handle. Returns RETCODE_BAD_PARAMETER if there is none, RETCODE_ERROR if the name is
  /// taken by another type.
  virtual ReturnCode_t register_type(DomainParticipant_ptr participant, const char* type_name) = 0;

  /// The type's own name; the caller frees it with CORBA::string_free.
  virtual char* get_type_name() = 0;
};

}  // namespace DDS
