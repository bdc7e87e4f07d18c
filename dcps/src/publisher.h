#pragma once

#include <atomic>
#include <mutex>
#include <vector>

#include <dds/dds.h>

#include <dcps/writer.h>

#include "dcps/src/participant.h"

namespace dcps {

class PublisherImpl final : public virtual OpenDDS::DCPS::LocalObject<DDS::Publisher> {
public:
  explicit PublisherImpl(ParticipantImpl& participant);
  ~PublisherImpl() override;

  /// False: Cyclone refuses.
  bool open();
  /// Deletes what it contains and leaves the domain.
  void close();
  /// True: it has no writers.
  bool is_clean();

  DDS::ReturnCode_t enable() override { return DDS::RETCODE_OK; }
  DDS::InstanceHandle_t get_instance_handle() override { return entity_handle_; }
  DDS::DataWriter_ptr create_datawriter(DDS::Topic_ptr topic, const DDS::DataWriterQos& qos,
                                        DDS::DataWriterListener_ptr listener, DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_datawriter(DDS::DataWriter_ptr writer) override;
  DDS::DataWriter_ptr lookup_datawriter(const char* topic_name) override;
  DDS::ReturnCode_t delete_contained_entities() override;
  DDS::ReturnCode_t get_qos(DDS::PublisherQos& qos) override;
  DDS::DomainParticipant_ptr get_participant() override;
  DDS::ReturnCode_t set_default_datawriter_qos(const DDS::DataWriterQos& qos) override;
  DDS::ReturnCode_t get_default_datawriter_qos(DDS::DataWriterQos& qos) override;

  dds_entity_t cyclone() const { return publisher_; }
  ParticipantImpl& participant() const { return *participant_.in(); }

private:
  DDS::DataWriterQos resolve(const DDS::DataWriterQos& qos, const TopicImpl& topic);

  const DDS::InstanceHandle_t entity_handle_;
  const Reference<ParticipantImpl> participant_;
  std::atomic<dds_entity_t> publisher_{0};
  std::mutex mutex_;  ///< guards what follows
  DDS::DataWriterQos writer_qos_;
  std::vector<Reference<DataWriterImpl>> writers_;
};

}  // namespace dcps
