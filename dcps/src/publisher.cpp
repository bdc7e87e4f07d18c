#include "dcps/src/publisher.h"

#include <dds/DCPS/Marked_Default_Qos.h>

#include "dcps/src/participant.h"
#include "dcps/src/topic.h"

namespace dcps {

PublisherImpl::PublisherImpl(ParticipantImpl& participant) : participant_(add_reference(&participant)) {}

PublisherImpl::~PublisherImpl() = default;

bool PublisherImpl::open() {
  return adopt(dds_create_publisher(participant_->cyclone(), nullptr, nullptr));
}

void PublisherImpl::close() {
  delete_contained_entities();
  dds_delete(give_up());
}

DDS::DataWriter_ptr PublisherImpl::create_datawriter(DDS::Topic_ptr topic, const DDS::DataWriterQos& qos,
                                                     DDS::DataWriterListener_ptr listener, DDS::StatusMask) {
  const Reference<TopicImpl> known_topic = narrow<TopicImpl>(topic);
  if (!CORBA::is_nil(listener) || CORBA::is_nil(known_topic) || known_topic->owner() != participant_.in()) {
    return DDS::DataWriter::_nil();
  }
  DDS::DataWriter_var made = known_topic->type_support().create_datawriter();
  const Reference<DataWriterImpl> writer = narrow<DataWriterImpl>(made.in());
  if (!writer->open(*this, *known_topic.in(), qos)) {
    return DDS::DataWriter::_nil();
  }
  writers_.add(*writer.in());
  return made._retn();
}

DDS::ReturnCode_t PublisherImpl::delete_datawriter(DDS::DataWriter_ptr writer) {
  return writers_.close_one(writer, [this](const DataWriterImpl& known) { return known.owned_by(*this); });
}

DDS::ReturnCode_t PublisherImpl::delete_contained_entities() {
  writers_.close_all();
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t PublisherImpl::get_default_datawriter_qos(DDS::DataWriterQos& qos) {
  qos = DATAWRITER_QOS_DEFAULT;
  return DDS::RETCODE_OK;
}

}  // namespace dcps
