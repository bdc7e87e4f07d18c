#pragma once

#include <atomic>
#include <mutex>
#include <vector>

#include <dds/dds.h>

#include <dcps/reader.h>

#include "dcps/src/participant.h"

namespace dcps {

class SubscriberImpl final : public virtual OpenDDS::DCPS::LocalObject<DDS::Subscriber> {
public:
  explicit SubscriberImpl(ParticipantImpl& participant);
  ~SubscriberImpl() override;

  /// False: Cyclone refuses.
  bool open();
  /// Deletes what it contains and leaves the domain.
  void close();
  /// True: it has no readers.
  bool is_clean();

  DDS::ReturnCode_t enable() override { return DDS::RETCODE_OK; }
  DDS::InstanceHandle_t get_instance_handle() override { return entity_handle_; }
  DDS::DataReader_ptr create_datareader(DDS::TopicDescription_ptr topic, const DDS::DataReaderQos& qos,
                                        DDS::DataReaderListener_ptr listener, DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_datareader(DDS::DataReader_ptr reader) override;
  DDS::DataReader_ptr lookup_datareader(const char* topic_name) override;
  DDS::ReturnCode_t delete_contained_entities() override;
  DDS::ReturnCode_t get_qos(DDS::SubscriberQos& qos) override;
  DDS::DomainParticipant_ptr get_participant() override;
  DDS::ReturnCode_t set_default_datareader_qos(const DDS::DataReaderQos& qos) override;
  DDS::ReturnCode_t get_default_datareader_qos(DDS::DataReaderQos& qos) override;

  dds_entity_t cyclone() const { return subscriber_; }
  ParticipantImpl& participant() const { return *participant_.in(); }

private:
  DDS::DataReaderQos resolve(const DDS::DataReaderQos& qos, const TopicImpl& topic);

  const DDS::InstanceHandle_t entity_handle_;
  const Reference<ParticipantImpl> participant_;
  std::atomic<dds_entity_t> subscriber_{0};
  std::mutex mutex_;  ///< guards what follows
  DDS::DataReaderQos reader_qos_;
  std::vector<Reference<DataReaderImpl>> readers_;
};

}  // namespace dcps
