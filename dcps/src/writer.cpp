#include <dcps/write_guard.h>
#include <dcps/writer.h>

#include "dcps/src/publisher.h"
#include "dcps/src/qos.h"
#include "dcps/src/statuses.h"
#include "dcps/src/topic.h"

namespace dcps {
namespace {

std::atomic<WriteGuard> write_guard{nullptr};

WriteOrder order_for(const TopicImpl& topic) {
  const WriteGuard guard = write_guard.load(std::memory_order_relaxed);
  return guard == nullptr ? WriteOrder::SEND : guard(topic.name().c_str());
}

}  // namespace

void set_write_guard(WriteGuard guard) noexcept {
  write_guard.store(guard);
}

DDS::InstanceHandle_t next_instance_handle() {
  static std::atomic<DDS::InstanceHandle_t> last{DDS::HANDLE_NIL};
  return ++last;
}

DataWriterImpl::DataWriterImpl() = default;

DataWriterImpl::~DataWriterImpl() = default;

bool DataWriterImpl::open(PublisherImpl& publisher, TopicImpl& topic, const DDS::DataWriterQos& qos) {
  publisher_ = add_reference(&publisher);
  topic_ = add_reference(&topic);
  if (!adopt(dds_create_writer(publisher.cyclone(), topic.cyclone(), to_cyclone(qos).get(), nullptr))) {
    return false;
  }
  topic.add_user();
  return true;
}

void DataWriterImpl::close() {
  unregister();
  dds_delete(give_up());
  topic_->remove_user();
}

DDS::InstanceHandle_t DataWriterImpl::register_sample(const void* sample) {
  if (instance_.load(std::memory_order_acquire) != 0) {
    return instance_handle_;
  }
  const std::lock_guard lock(registration_);
  if (instance_ == 0) {
    dds_instance_handle_t instance = 0;
    if (dds_register_instance(cyclone(), &instance, sample) != DDS_RETCODE_OK) {
      return DDS::HANDLE_NIL;
    }
    instance_.store(instance, std::memory_order_release);
  }
  return instance_handle_;
}

DDS::ReturnCode_t DataWriterImpl::write_sample(const void* sample) {
  if (register_sample(sample) == DDS::HANDLE_NIL) {
    return DDS::RETCODE_ERROR;
  }
  switch (order_for(*topic_.in())) {
    case WriteOrder::REFUSE:
      return DDS::RETCODE_ERROR;
    case WriteOrder::LOSE:
      return DDS::RETCODE_OK;
    case WriteOrder::SEND_TWICE:
      dds_write(cyclone(), sample);
      break;
    case WriteOrder::SEND:
      break;
  }
  return to_return_code(dds_write(cyclone(), sample));
}

DDS::ReturnCode_t DataWriterImpl::dispose() {
  const dds_instance_handle_t instance = instance_;
  return instance == 0 ? DDS::RETCODE_ERROR : to_return_code(dds_dispose_ih(cyclone(), instance));
}

DDS::ReturnCode_t DataWriterImpl::unregister() {
  const std::lock_guard lock(registration_);
  if (instance_ == 0) {
    return DDS::RETCODE_ERROR;
  }
  const DDS::ReturnCode_t result = to_return_code(dds_unregister_instance_ih(cyclone(), instance_));
  if (result == DDS::RETCODE_OK) {
    instance_ = 0;
  }
  return result;
}

DDS::ReturnCode_t DataWriterImpl::get_publication_matched_status(DDS::PublicationMatchedStatus& status) {
  dds_publication_matched_status_t cyclone_status{};
  const DDS::ReturnCode_t result = to_return_code(dds_get_publication_matched_status(cyclone(), &cyclone_status));
  if (result == DDS::RETCODE_OK) {
    status = to_dcps(cyclone_status);
  }
  return result;
}

}  // namespace dcps
