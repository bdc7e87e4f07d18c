#include "tests/unit/dcps/entities.h"

#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

namespace dcps_test {

DDS::DomainId_t own_domain() {
  return 100 + getpid() % 100;
}

std::string own_topic(const std::string& name) {
  return "test/" + std::to_string(getpid()) + "/" + name;
}

Sample numbered(CORBA::Long number) {
  Sample sample{};
  sample.quality = number;
  return sample;
}

DDS::DataWriterQos writer_qos() {
  return TheServiceParticipant->initial_DataWriterQos();
}

DDS::DataWriterQos keep_all_writer() {
  DDS::DataWriterQos qos = writer_qos();
  qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
  qos.reliability.max_blocking_time = {DDS::DURATION_INFINITE_SEC, DDS::DURATION_INFINITE_NSEC};
  return qos;
}

DDS::DataWriterQos durable_writer() {
  DDS::DataWriterQos qos = writer_qos();
  qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
  return qos;
}

DDS::DataReaderQos reader_qos() {
  return TheServiceParticipant->initial_DataReaderQos();
}

DDS::DataReaderQos keep_all_reader() {
  DDS::DataReaderQos qos = reader_qos();
  qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
  qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
  return qos;
}

DDS::DataReaderQos durable_reader() {
  DDS::DataReaderQos qos = keep_all_reader();
  qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
  return qos;
}

Entities::Entities(DDS::DomainId_t domain) : factory(TheParticipantFactory) {
  participant = factory->create_participant(domain, PARTICIPANT_QOS_DEFAULT, nullptr, ALL);
  if (CORBA::is_nil(participant)) {
    throw std::runtime_error("no participant");
  }
  publisher = participant->create_publisher(PUBLISHER_QOS_DEFAULT, nullptr, ALL);
  subscriber = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, nullptr, ALL);
  const TypeSupport_var type = new TypeSupportImpl;
  type->register_type(participant, "");
  type_name = type->get_type_name();
}

Entities::~Entities() {
  participant->delete_contained_entities();
  factory->delete_participant(participant);
}

DDS::Topic_ptr Entities::topic(const std::string& name) {
  return participant->create_topic(name.c_str(), type_name, TOPIC_QOS_DEFAULT, nullptr, ALL);
}

Writer* Entities::writer(const std::string& topic_name, const DDS::DataWriterQos& qos) {
  const DDS::Topic_var on = topic(topic_name);
  const DDS::DataWriter_var made = publisher->create_datawriter(on, qos, nullptr, ALL);
  return Writer::_narrow(made);
}

Reader* Entities::reader(const std::string& topic_name, DDS::DataReaderListener_ptr listener,
                         const DDS::DataReaderQos& qos) {
  const DDS::Topic_var on = topic(topic_name);
  const DDS::DataReader_var made = subscriber->create_datareader(on, qos, listener, ALL);
  return Reader::_narrow(made);
}

bool take_up_to(Reader* reader, CORBA::Long number) {
  for (int tries = 0; tries < 10000; ++tries) {
    Sample sample{};
    DDS::SampleInfo info{};
    if (reader->take_next_sample(sample, info) != DDS::RETCODE_OK) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    } else if (info.valid_data && sample.quality == number) {
      return true;
    }
  }
  return false;
}

}  // namespace dcps_test
