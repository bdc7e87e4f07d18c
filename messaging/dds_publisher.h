#pragma once

#include <iostream>
#include <memory>
#include <string>

#include "messaging/connection_failure.h"
#include "messaging/signature_texts.h"
#include "varnok_attributes.h"
#include "varnok_dds.h"
#include "varnok_errors.h"

namespace Varnok {

/// Publishes single values of type T on one topic. A subscriber that joins later still gets the last value.
///
/// Constructed, used and destroyed by any one thread at a time: the sample is shared by all calls.
template <typename T>
class DDS_Publisher : public DDS_BaseObj {
public:
  /// Makes publisher, topic and writer on the process's participant. Throws Connection_errors::Not_Connected if one of
  /// them cannot be made.
  explicit DDS_Publisher(const char* topicName);
  /// Removes writer, publisher and topic.
  virtual ~DDS_Publisher();

  /// Writes one sample that carries `value`; the same value twice makes two samples. Throws
  /// Connection_errors::Communications_failure if DDS rejects the write.
  void sendData(const T& value);

private:
  using Attribute = DDS_Attribute<T>;
  using Texts = DDS_Publisher_texts<T>;

  /// The typed interface of the writer.
  struct Writer {
    typename Attribute::Sample sample{};
    typename Attribute::TypeSupport_var type_support = new typename Attribute::TypeSupportImpl;
    typename Attribute::DataWriter_var typed_writer;
    typename Attribute::DataWriter::_ptr_type (*narrow)(CORBA::Object_ptr) = &Attribute::DataWriter::_narrow;
  };

  void connect();
  void create_topic();
  void create_writer();
  void disconnect();

  std::unique_ptr<Writer> writer_;
  DDS::Publisher_var publisher_;
  DDS::Topic_var topic_;
  DDS::DataWriter_var data_writer_;
  std::string topic_name_;
};

template <typename T>
DDS_Publisher<T>::DDS_Publisher(const char* topicName) : writer_(new Writer), topic_name_(topicName) {
  connect();
}

template <typename T>
DDS_Publisher<T>::~DDS_Publisher() {
  disconnect();
  writer_.reset();
}

template <typename T>
void DDS_Publisher<T>::connect() {
  const DDS::DomainParticipant_ptr participant = DdsBase().participant;
  if (!CORBA::is_nil(participant)) {
    publisher_ = participant->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), ALL_STATUSES);
  }
  if (CORBA::is_nil(publisher_.in())) {
    throw Connection_errors::Not_Connected("DDS_Publisher::Init err: Participant->create_publisher");
  }
  create_topic();
  create_writer();
}

template <typename T>
void DDS_Publisher<T>::create_topic() {
  const DDS::DomainParticipant_ptr participant = DdsBase().participant;
  if (writer_->type_support->register_type(participant, "") != DDS::RETCODE_OK) {
    messaging::fail_to_connect(std::string(Texts::CONSTRUCTOR) + " err: Osts->register_type");
  }
  const CORBA::String_var type_name = writer_->type_support->get_type_name();
  topic_ = participant->create_topic(topic_name_.c_str(), type_name.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(),
                                     ALL_STATUSES);
  if (CORBA::is_nil(topic_.in())) {
    messaging::fail_to_connect(std::string(Texts::CONSTRUCTOR) + ":  Participant->create_topic [" + topic_name_ +
                               "] [" + type_name.in() + "]");
  }
}

template <typename T>
void DDS_Publisher<T>::create_writer() {
  // If the default QoS cannot be fetched, the record keeps its initial values; the writer is made anyway.
  DDS::DataWriterQos qos = TheServiceParticipant->initial_DataWriterQos();
  if (publisher_->get_default_datawriter_qos(qos) != DDS::RETCODE_OK) {
    std::cout << "DDS_Publisher:: ERROR: create_datawriter failed" << std::endl;
  }
  qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
  data_writer_ = publisher_->create_datawriter(topic_.in(), qos, DDS::DataWriterListener::_nil(), ALL_STATUSES);
  if (CORBA::is_nil(data_writer_.in())) {
    messaging::fail_to_connect(std::string(Texts::CONSTRUCTOR) + " err: Publisher->create_datawriter");
  }
  writer_->typed_writer = writer_->narrow(data_writer_.in());
  if (CORBA::is_nil(writer_->typed_writer.in())) {
    messaging::fail_to_connect(std::string(Texts::CONSTRUCTOR) + " err:  pub_obj.writer_i_narrow_func");
  }
}

template <typename T>
void DDS_Publisher<T>::sendData(const T& value) {
  writer_->sample.value = value;
  writer_->sample.quality = 0;
  writer_->sample.timestamp = 0;
  writer_->sample.source = 0;
  writer_->typed_writer->register_instance(writer_->sample);
  if (writer_->typed_writer->write(writer_->sample, DDS::HANDLE_NIL) != DDS::RETCODE_OK) {
    throw Connection_errors::Communications_failure(std::string(Texts::SEND_DATA) + " error");
  }
}

template <typename T>
void DDS_Publisher<T>::disconnect() {
  publisher_->delete_contained_entities();
  writer_->type_support = Attribute::TypeSupport::_nil();
  writer_->typed_writer = Attribute::DataWriter::_nil();
  data_writer_ = DDS::DataWriter::_nil();
  DdsBase().participant->delete_publisher(publisher_.in());
  DdsBase().participant->delete_topic(topic_.in());
}

}  // namespace Varnok
