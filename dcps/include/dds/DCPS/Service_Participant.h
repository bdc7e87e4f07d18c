#pragma once

#include <dds/DCPS/MonitorFactory.h>
#include <dds/DdsDcpsDomainC.h>

namespace OpenDDS::DCPS {

/// The process's DDS service: the participant factory, and the default QoS of writers and readers.
/// Usable by any thread, during static initialisation too.
class __attribute__((visibility("default"))) Service_Participant {
public:
  static Service_Participant* instance();

  /// The process's participant factory; the caller owns the returned reference.
  DDS::DomainParticipantFactory_ptr get_domain_participant_factory();

  DDS::DataWriterQos initial_DataWriterQos() const;
  DDS::DataReaderQos initial_DataReaderQos() const;

private:
  Service_Participant() = default;
  ~Service_Participant() = default;
};

}  // namespace OpenDDS::DCPS

#define TheServiceParticipant OpenDDS::DCPS::Service_Participant::instance()
#define TheParticipantFactory TheServiceParticipant->get_domain_participant_factory()
