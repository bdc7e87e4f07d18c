#pragma once

#include <dds/DdsDcpsInfrastructureC.h>

namespace DDS {

/// What a reader is made for.
class __attribute__((visibility("default"))) TopicDescription : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(TopicDescription)

  /// Both texts are the caller's, to be freed with CORBA::string_free.
  virtual char* get_type_name() = 0;
  virtual char* get_name() = 0;
  /// The caller owns the returned reference.
  virtual DomainParticipant_ptr get_participant() = 0;
};

class __attribute__((visibility("default"))) TopicListener : public virtual Listener {
public:
  DCPS_INTERFACE_BODY(TopicListener)

  virtual void on_inconsistent_topic(Topic_ptr the_topic, const InconsistentTopicStatus& status) = 0;
};

/// A named channel for samples of one type.
class __attribute__((visibility("default"))) Topic : public virtual Entity, public virtual TopicDescription {
public:
  DCPS_INTERFACE_BODY(Topic)

  virtual ReturnCode_t get_qos(TopicQos& qos) = 0;
};

/// Makes one sample type known to participants.
class __attribute__((visibility("default"))) TypeSupport : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(TypeSupport)

  /// Registers the type with the participant under `type_name`; null or empty: under its own name. A stand-in that
  /// forwards to a participant of this engine is taken for that participant.
  /// RETCODE_BAD_PARAMETER: no participant; RETCODE_ERROR: the name stands for another type there.
  virtual ReturnCode_t register_type(DomainParticipant_ptr participant, const char* type_name) = 0;

  /// The type's own name; the caller frees it with CORBA::string_free.
  virtual char* get_type_name() = 0;
};

}  // namespace DDS
