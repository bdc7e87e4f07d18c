#pragma once

#include "dcps/src/contained.h"
#include "dcps/src/participant.h"

namespace dcps {

/// The process's participants. Lives as long as the process.
class FactoryImpl final : public virtual OpenDDS::DCPS::LocalObject<DDS::DomainParticipantFactory> {
public:
  static FactoryImpl& instance();

  DDS::DomainParticipant_ptr create_participant(DDS::DomainId_t domain, const DDS::DomainParticipantQos& qos,
                                                DDS::DomainParticipantListener_ptr listener,
                                                DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_participant(DDS::DomainParticipant_ptr participant) override;

  /// The participant of that instance handle; nil if there is none.
  Reference<ParticipantImpl> find(DDS::InstanceHandle_t handle) const;

private:
  FactoryImpl() = default;

  Contained<ParticipantImpl> participants_;
};

}  // namespace dcps
