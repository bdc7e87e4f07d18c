#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include <dcps/entity.h>
#include <dds/DdsDcpsPublicationC.h>

namespace dcps {

class PublisherImpl;
class TopicImpl;

/// A writer on Cyclone DDS, its samples untyped: each lies in memory as the topic's C description says.
/// Its one instance (topic types have no keys) is registered by the first sample.
class __attribute__((visibility("default"))) DataWriterImpl : public EntityImpl<DDS::DataWriter> {
public:
  /// Joins the topic. False if Cyclone refuses; the writer can then only be deleted.
  bool open(PublisherImpl& publisher, TopicImpl& topic, const DDS::DataWriterQos& qos);
  void close();
  bool owned_by(const PublisherImpl& publisher) const { return publisher_.in() == &publisher; }

  DDS::ReturnCode_t get_publication_matched_status(DDS::PublicationMatchedStatus& status) override;

protected:
  DataWriterImpl();
  ~DataWriterImpl() override;

  DDS::InstanceHandle_t register_sample(const void* sample);
  DDS::ReturnCode_t write_sample(const void* sample);
  DDS::ReturnCode_t dispose();
  DDS::ReturnCode_t unregister();

private:
  const DDS::InstanceHandle_t instance_handle_ = next_instance_handle();
  std::atomic<std::uint64_t> instance_{0};  ///< Cyclone's, while it is registered
  std::mutex registration_;
  Reference<PublisherImpl> publisher_;
  Reference<TopicImpl> topic_;
};

}  // namespace dcps
