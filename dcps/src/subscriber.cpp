#include "dcps/src/subscriber.h"

#include <dds/DCPS/Marked_Default_Qos.h>

#include "dcps/src/topic.h"

namespace dcps {

SubscriberImpl::SubscriberImpl(ParticipantImpl& participant) : participant_(add_reference(&participant)) {}

SubscriberImpl::~SubscriberImpl() = default;

bool SubscriberImpl::open() {
  return adopt(dds_create_subscriber(participant_->cyclone(), nullptr, nullptr));
}

void SubscriberImpl::close() {
  delete_contained_entities();
  dds_delete(give_up());
}

DDS::DataReader_ptr SubscriberImpl::create_datareader(DDS::TopicDescription_ptr topic, const DDS::DataReaderQos& qos,
                                                      DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) {
  const Reference<TopicImpl> known_topic = narrow<TopicImpl>(topic);
  if (CORBA::is_nil(known_topic) || known_topic->owner() != participant_.in()) {
    return DDS::DataReader::_nil();
  }
  DDS::DataReader_var made = known_topic->type_support().create_datareader();
  const Reference<DataReaderImpl> reader = narrow<DataReaderImpl>(made.in());
  if (!reader->open(*this, *known_topic.in(), qos)) {
    return DDS::DataReader::_nil();
  }
  // Ahead of the first call, which may delete it.
  readers_.add(*reader.in());
  if (!reader->listen(listener, mask)) {
    delete_datareader(made.in());
    return DDS::DataReader::_nil();
  }
  return made._retn();
}

DDS::ReturnCode_t SubscriberImpl::delete_datareader(DDS::DataReader_ptr reader) {
  return readers_.close_one(reader, [this](const DataReaderImpl& known) { return known.owned_by(*this); });
}

DDS::ReturnCode_t SubscriberImpl::delete_contained_entities() {
  readers_.close_all();
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t SubscriberImpl::get_default_datareader_qos(DDS::DataReaderQos& qos) {
  qos = DATAREADER_QOS_DEFAULT;
  return DDS::RETCODE_OK;
}

}  // namespace dcps
