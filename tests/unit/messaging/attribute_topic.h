#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <boost/thread/thread.hpp>

#include "tests/doubles/fake_varnok.h"
#include "varnok_attributes.h"

/// The other side of a topic, on the process's real participant. `Attribute` is a Varnok::DDS_Attribute.
template <typename Attribute>
class AttributeTopic {
public:
  explicit AttributeTopic(const char* name) {
    const typename Attribute::TypeSupport_var type = new typename Attribute::TypeSupportImpl;
    type->register_type(participant(), "");
    const CORBA::String_var type_name = type->get_type_name();
    topic_ = participant()->create_topic(name, type_name.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(), 0);
  }
  ~AttributeTopic() { participant()->delete_topic(topic_.in()); }
  AttributeTopic(const AttributeTopic&) = delete;
  AttributeTopic& operator=(const AttributeTopic&) = delete;

  static DDS::DomainParticipant_ptr participant() { return doubles::real_participant(); }
  DDS::Topic_ptr topic() const { return topic_.in(); }

private:
  DDS::Topic_var topic_;
};

/// Writes to a topic.
template <typename Attribute>
class AttributeWriter {
public:
  /// `autodispose`: whether the instance is disposed when it is unregistered.
  explicit AttributeWriter(const char* name, bool autodispose = true) : topic_(name) {
    publisher_ = topic_.participant()->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), 0);
    DDS::DataWriterQos qos = TheServiceParticipant->initial_DataWriterQos();
    publisher_->get_default_datawriter_qos(qos);
    qos.writer_data_lifecycle.autodispose_unregistered_instances = autodispose;
    const DDS::DataWriter_var writer =
        publisher_->create_datawriter(topic_.topic(), qos, DDS::DataWriterListener::_nil(), 0);
    writer_ = Attribute::DataWriter::_narrow(writer.in());
  }
  ~AttributeWriter() {
    publisher_->delete_contained_entities();
    topic_.participant()->delete_publisher(publisher_.in());
  }

  /// Waits until a reader has joined. Throws std::runtime_error if none does within ten seconds.
  void wait_for_reader() const {
    DDS::PublicationMatchedStatus status{};
    for (int tries = 0; tries < 10000; ++tries) {
      writer_->get_publication_matched_status(status);
      if (status.current_count > 0) {
        return;
      }
      boost::this_thread::sleep(boost::get_system_time() + boost::posix_time::milliseconds(1));
    }
    throw std::runtime_error("no reader has joined");
  }
  DDS::ReturnCode_t write() { return writer_->write(typename Attribute::Sample(), DDS::HANDLE_NIL); }
  DDS::ReturnCode_t dispose() { return writer_->dispose(typename Attribute::Sample(), DDS::HANDLE_NIL); }
  DDS::ReturnCode_t unregister() { return writer_->unregister_instance(typename Attribute::Sample(), DDS::HANDLE_NIL); }

private:
  AttributeTopic<Attribute> topic_;
  DDS::Publisher_var publisher_;
  typename Attribute::DataWriter_var writer_;
};

/// Reads the samples of a topic, also those written before it joined.
template <typename Attribute>
class AttributeReader {
public:
  explicit AttributeReader(const char* name) : topic_(name) {
    subscriber_ = topic_.participant()->create_subscriber(SUBSCRIBER_QOS_DEFAULT, DDS::SubscriberListener::_nil(), 0);
    DDS::DataReaderQos qos = TheServiceParticipant->initial_DataReaderQos();
    subscriber_->get_default_datareader_qos(qos);
    qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
    qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
    qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
    const DDS::DataReader_var reader =
        subscriber_->create_datareader(topic_.topic(), qos, DDS::DataReaderListener::_nil(), 0);
    reader_ = Attribute::DataReader::_narrow(reader.in());
  }
  ~AttributeReader() {
    subscriber_->delete_contained_entities();
    topic_.participant()->delete_subscriber(subscriber_.in());
  }

  DDS::DataReader_ptr reader() const { return reader_.in(); }

  /// The next `count` samples with data; fewer if they do not arrive within ten seconds.
  std::vector<typename Attribute::Sample> take(std::size_t count) {
    std::vector<typename Attribute::Sample> samples;
    for (int tries = 0; tries < 10000 && samples.size() < count; ++tries) {
      typename Attribute::Sample sample{};
      DDS::SampleInfo info{};
      if (reader_->take_next_sample(sample, info) != DDS::RETCODE_OK) {
        boost::this_thread::sleep(boost::get_system_time() + boost::posix_time::milliseconds(1));
      } else if (info.valid_data) {
        samples.push_back(sample);
      }
    }
    return samples;
  }
  /// Whether there is a sample now.
  bool has_more() {
    typename Attribute::Sample sample{};
    DDS::SampleInfo info{};
    return reader_->take_next_sample(sample, info) == DDS::RETCODE_OK && info.valid_data;
  }

private:
  AttributeTopic<Attribute> topic_;
  DDS::Subscriber_var subscriber_;
  typename Attribute::DataReader_var reader_;
};

using BooleanAttribute = Varnok::DDS_Attribute<bool>;
using VoidAttribute = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>;
