#pragma once

#include <mutex>
#include <vector>

#include "dcps/src/participant.h"

namespace dcps {

/// The process's participants. It lives as long as the process does.
class FactoryImpl final : public virtual OpenDDS::DCPS::LocalObject<DDS::DomainParticipantFactory> {
public:
  static FactoryImpl& instance();

  DDS::DomainParticipant_ptr create_participant(DDS::DomainId_t domain, const DDS::DomainParticipantQos& qos,
                                                DDS::DomainParticipantListener_ptr listener,
                                                DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_participant(DDS::DomainParticipant_ptr participant) override;
  DDS::DomainParticipant_ptr lookup_participant(DDS::DomainId_t domain) override;
  DDS::ReturnCode_t get_default_participant_qos(DDS::DomainParticipantQos& qos) override;

private:
  FactoryImpl() = default;

  std::mutex mutex_;
  std::vector<Reference<ParticipantImpl>> participants_;
};

}  // namespace dcps
