#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsPublicationC.h>

namespace dcps {

class ListenerCalls;
class PublisherImpl;
class TopicImpl;

/// A writer on Cyclone DDS, its samples untyped: each lies in memory as the topic's C description says.
/// Its one instance (topic types have no keys) is registered by the first sample.
class __attribute__((visibility("default"))) DataWriterImpl
    : public virtual OpenDDS::DCPS::LocalObject<DDS::DataWriter> {
public:
  DDS::ReturnCode_t enable() override;
  DDS::InstanceHandle_t get_instance_handle() override;
  DDS::ReturnCode_t get_qos(DDS::DataWriterQos& qos) override;
  DDS::Topic_ptr get_topic() override;
  DDS::Publisher_ptr get_publisher() override;
  DDS::ReturnCode_t wait_for_acknowledgments(const DDS::Duration_t& max_wait) override;
  DDS::ReturnCode_t get_publication_matched_status(DDS::PublicationMatchedStatus& status) override;

protected:
  DataWriterImpl();
  ~DataWriterImpl() override;

  DDS::InstanceHandle_t register_sample(const void* sample);
  DDS::ReturnCode_t unregister_sample(const void* sample, DDS::InstanceHandle_t handle);
  DDS::ReturnCode_t write_sample(const void* sample, DDS::InstanceHandle_t handle);
  DDS::ReturnCode_t dispose_sample(const void* sample, DDS::InstanceHandle_t handle);
  DDS::InstanceHandle_t registered_instance() const;

private:
  friend class PublisherImpl;
  friend class WriterEvents;

  /// Joins the topic. False: Cyclone refuses; the writer is then good for nothing but deletion.
  bool open(PublisherImpl& publisher, TopicImpl& topic, const DDS::DataWriterQos& qos,
            DDS::DataWriterListener_ptr listener, DDS::StatusMask mask);
  void close();
  bool is_other_instance(DDS::InstanceHandle_t handle) const;

  const DDS::InstanceHandle_t entity_handle_;
  const DDS::InstanceHandle_t instance_handle_;
  std::atomic<int> writer_{0};  ///< Cyclone's entity; 0: not open
  std::atomic<bool> registered_{false};
  std::mutex registration_;
  DDS::DataWriterQos qos_{};
  Reference<PublisherImpl> publisher_;
  Reference<TopicImpl> topic_;
  DDS::DataWriterListener_ptr listener_ = nullptr;  ///< good within a call that calls_ makes
  std::unique_ptr<ListenerCalls> calls_;
};

}  // namespace dcps
