#include <atomic>

#include <dds/DCPS/MonitorFactory.h>
#include <dds/DCPS/Service_Participant.h>

#include "dcps/src/factory.h"
#include "dcps/src/qos.h"

namespace OpenDDS::DCPS {

namespace {

std::atomic<bool> shut_down{false};

}  // namespace

int MonitorFactory::service_initialize() {
  return 0;
}

Service_Participant* Service_Participant::instance() {
  static auto* service = new Service_Participant;
  return service;
}

DDS::DomainParticipantFactory_ptr Service_Participant::get_domain_participant_factory() {
  shut_down = false;
  return DDS::DomainParticipantFactory::_duplicate(&dcps::FactoryImpl::instance());
}

DDS::DomainParticipantFactory_ptr Service_Participant::get_domain_participant_factory(int&, char*[]) {
  return get_domain_participant_factory();
}

void Service_Participant::shutdown() {
  shut_down = true;
}

bool Service_Participant::is_shut_down() const {
  return shut_down;
}

DDS::DomainParticipantQos Service_Participant::initial_DomainParticipantQos() const {
  return {};
}
DDS::TopicQos Service_Participant::initial_TopicQos() const {
  return dcps::initial_topic_qos();
}
DDS::PublisherQos Service_Participant::initial_PublisherQos() const {
  return {};
}
DDS::SubscriberQos Service_Participant::initial_SubscriberQos() const {
  return {};
}
DDS::DataWriterQos Service_Participant::initial_DataWriterQos() const {
  return dcps::initial_writer_qos();
}
DDS::DataReaderQos Service_Participant::initial_DataReaderQos() const {
  return dcps::initial_reader_qos();
}

}  // namespace OpenDDS::DCPS
