#pragma once

#include <dds/DCPS/MonitorFactory.h>
#include <dds/DdsDcpsDomainC.h>

namespace OpenDDS::DCPS {

/// The process's DDS service: the factory of its participants, and the QoS that entities begin with.
/// Any thread may use it, static initialisation included.
class __attribute__((visibility("default"))) Service_Participant {
public:
  static Service_Participant* instance();

  /// The process's participant factory; the caller owns the returned reference. The arguments are not looked at: the
  /// engine is configured by the environment variable CYCLONEDDS_URI.
  DDS::DomainParticipantFactory_ptr get_domain_participant_factory();
  DDS::DomainParticipantFactory_ptr get_domain_participant_factory(int& argc, char* argv[]);

  /// Ends the service. All participants have been deleted before.
  void shutdown();
  bool is_shut_down() const;

  DDS::DomainParticipantQos initial_DomainParticipantQos() const;
  DDS::TopicQos initial_TopicQos() const;
  DDS::PublisherQos initial_PublisherQos() const;
  DDS::SubscriberQos initial_SubscriberQos() const;
  DDS::DataWriterQos initial_DataWriterQos() const;
  DDS::DataReaderQos initial_DataReaderQos() const;

private:
  Service_Participant() = default;
  ~Service_Participant() = default;
};

}  // namespace OpenDDS::DCPS

#define TheServiceParticipant OpenDDS::DCPS::Service_Participant::instance()
#define TheParticipantFactory TheServiceParticipant->get_domain_participant_factory()
#define TheParticipantFactoryWithArgs(argc, argv) TheServiceParticipant->get_domain_participant_factory(argc, argv)
