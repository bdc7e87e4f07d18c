#pragma once

#include <string>

#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace dcps_test {

using Sample = Varnok::QTNN_DDS::ATTR_BOOLEAN;
using Writer = Varnok::QTNN_DDS::ATTR_BOOLEANDataWriter;
using Writer_var = Varnok::QTNN_DDS::ATTR_BOOLEANDataWriter_var;
using Reader = Varnok::QTNN_DDS::ATTR_BOOLEANDataReader;
using Reader_var = Varnok::QTNN_DDS::ATTR_BOOLEANDataReader_var;
using TypeSupport_var = Varnok::QTNN_DDS::ATTR_BOOLEANTypeSupport_var;
using TypeSupportImpl = Varnok::QTNN_DDS::ATTR_BOOLEANTypeSupportImpl;

constexpr DDS::StatusMask ALL = OpenDDS::DCPS::DEFAULT_STATUS_MASK;

/// This process's domain.
DDS::DomainId_t own_domain();

/// A topic name that no other process uses.
std::string own_topic(const std::string& name);

/// A sample identified by its number.
Sample numbered(CORBA::Long number);

DDS::DataWriterQos writer_qos();       ///< the default
DDS::DataWriterQos keep_all_writer();  ///< keeps all; waits for room without limit
DDS::DataWriterQos durable_writer();   ///< transient-local
DDS::DataReaderQos reader_qos();       ///< the default
DDS::DataReaderQos keep_all_reader();  ///< keeps all, reliable
DDS::DataReaderQos durable_reader();   ///< keeps all, reliable, transient-local

/// A participant with a publisher, a subscriber and the attribute type registered; the destructor deletes it with all
/// its entities.
class Entities {
public:
  explicit Entities(DDS::DomainId_t domain = own_domain());
  ~Entities();
  Entities(const Entities&) = delete;
  Entities& operator=(const Entities&) = delete;

  /// The caller owns the reference, here and below. Each call adds one use of the topic.
  DDS::Topic_ptr topic(const std::string& name);
  Writer* writer(const std::string& topic_name, const DDS::DataWriterQos& qos = keep_all_writer());
  Reader* reader(const std::string& topic_name, DDS::DataReaderListener_ptr listener = nullptr,
                 const DDS::DataReaderQos& qos = keep_all_reader());

  DDS::DomainParticipantFactory_var factory;
  DDS::DomainParticipant_var participant;
  DDS::Publisher_var publisher;
  DDS::Subscriber_var subscriber;
  CORBA::String_var type_name;
};

/// Takes samples until one has that number; false if it does not arrive within ten seconds.
bool take_up_to(Reader* reader, CORBA::Long number);

}  // namespace dcps_test
