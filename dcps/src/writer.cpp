#include <dcps/writer.h>

#include "dcps/src/callback_order.h"
#include "dcps/src/engine.h"
#include "dcps/src/listener_calls.h"
#include "dcps/src/publisher.h"
#include "dcps/src/qos.h"
#include "dcps/src/statuses.h"
#include "dcps/src/thread_role.h"
#include "dcps/src/topic.h"
#include "dcps/src/writer_events.h"

namespace dcps {

DataWriterImpl::DataWriterImpl() : entity_handle_(next_instance_handle()), instance_handle_(next_instance_handle()) {}

DataWriterImpl::~DataWriterImpl() {
  CallbackOrder::enter(this);
}

bool DataWriterImpl::open(PublisherImpl& publisher, TopicImpl& topic, const DDS::DataWriterQos& qos,
                          DDS::DataWriterListener_ptr listener, DDS::StatusMask mask) {
  qos_ = qos;
  publisher_ = add_reference(&publisher);
  topic_ = add_reference(&topic);
  listener_ = listener;
  calls_ = std::make_unique<ListenerCalls>(publisher.participant().delivery(), listener);
  const CycloneQos cyclone_qos = to_cyclone(qos);
  const CycloneListener events =
      WriterEvents::listener_for(*this, CORBA::is_nil(listener) ? OpenDDS::DCPS::NO_STATUS_MASK : mask);
  CallbackOrder::leave(this);
  const UserCall call;
  const dds_entity_t writer = dds_create_writer(publisher.cyclone(), topic.cyclone(), cyclone_qos.get(), events.get());
  if (writer < 0) {
    return false;
  }
  topic.add_user();
  writer_ = writer;
  return true;
}

void DataWriterImpl::close() {
  const dds_entity_t writer = writer_.exchange(0);
  if (writer <= 0) {
    return;
  }
  calls_->close();
  delete_in_cyclone(writer, this, publisher_->participant().delivery());
  topic_->remove_user();
}

bool DataWriterImpl::is_other_instance(DDS::InstanceHandle_t handle) const {
  return handle != DDS::HANDLE_NIL && handle != instance_handle_;
}

DDS::InstanceHandle_t DataWriterImpl::registered_instance() const {
  return registered_ ? instance_handle_ : DDS::HANDLE_NIL;
}

DDS::InstanceHandle_t DataWriterImpl::register_sample(const void* sample) {
  if (registered_.load(std::memory_order_acquire)) {
    return instance_handle_;
  }
  const std::lock_guard lock(registration_);
  if (registered_) {
    return instance_handle_;
  }
  dds_instance_handle_t instance = 0;
  if (dds_register_instance(writer_, &instance, sample) != DDS_RETCODE_OK) {
    return DDS::HANDLE_NIL;
  }
  registered_.store(true, std::memory_order_release);
  return instance_handle_;
}

DDS::ReturnCode_t DataWriterImpl::write_sample(const void* sample, DDS::InstanceHandle_t handle) {
  if (is_other_instance(handle)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  if (register_sample(sample) == DDS::HANDLE_NIL) {
    return DDS::RETCODE_ERROR;
  }
  const UserCall call;
  return to_return_code(dds_write(writer_, sample));
}

DDS::ReturnCode_t DataWriterImpl::dispose_sample(const void* sample, DDS::InstanceHandle_t handle) {
  if (is_other_instance(handle)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  if (!registered_) {
    return DDS::RETCODE_ERROR;
  }
  const UserCall call;
  return to_return_code(dds_dispose(writer_, sample));
}

DDS::ReturnCode_t DataWriterImpl::unregister_sample(const void* sample, DDS::InstanceHandle_t handle) {
  if (is_other_instance(handle)) {
    return DDS::RETCODE_BAD_PARAMETER;
  }
  const std::lock_guard lock(registration_);
  if (!registered_) {
    return DDS::RETCODE_ERROR;
  }
  const UserCall call;
  const DDS::ReturnCode_t result = to_return_code(dds_unregister_instance(writer_, sample));
  if (result == DDS::RETCODE_OK) {
    registered_ = false;
  }
  return result;
}

DDS::ReturnCode_t DataWriterImpl::enable() {
  return DDS::RETCODE_OK;
}

DDS::InstanceHandle_t DataWriterImpl::get_instance_handle() {
  return entity_handle_;
}

DDS::ReturnCode_t DataWriterImpl::get_qos(DDS::DataWriterQos& qos) {
  qos = qos_;
  return DDS::RETCODE_OK;
}

DDS::Topic_ptr DataWriterImpl::get_topic() {
  return DDS::Topic::_duplicate(topic_.in());
}

DDS::Publisher_ptr DataWriterImpl::get_publisher() {
  return DDS::Publisher::_duplicate(publisher_.in());
}

DDS::ReturnCode_t DataWriterImpl::wait_for_acknowledgments(const DDS::Duration_t& max_wait) {
  return to_return_code(dds_wait_for_acks(writer_, to_cyclone(max_wait)));
}

DDS::ReturnCode_t DataWriterImpl::get_publication_matched_status(DDS::PublicationMatchedStatus& status) {
  dds_publication_matched_status_t cyclone{};
  const DDS::ReturnCode_t result = to_return_code(dds_get_publication_matched_status(writer_, &cyclone));
  if (result == DDS::RETCODE_OK) {
    status = to_dcps(cyclone);
  }
  return result;
}

}  // namespace dcps
