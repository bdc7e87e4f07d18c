#pragma once

#include <atomic>
#include <string>

#include <dds/dds.h>

#include <dds/DCPS/LocalObject.h>
#include <dds/DCPS/TypeSupportImpl.h>
#include <dds/DdsDcpsTopicC.h>

namespace dcps {

class ParticipantImpl;

class TopicImpl final : public virtual OpenDDS::DCPS::LocalObject<DDS::Topic> {
public:
  TopicImpl(ParticipantImpl& participant, std::string name, std::string type_name, const DDS::TopicQos& qos,
            Reference<OpenDDS::DCPS::TypeSupportImpl> type_support);
  ~TopicImpl() override;

  /// False: Cyclone refuses.
  bool open();
  void close();

  DDS::ReturnCode_t enable() override { return DDS::RETCODE_OK; }
  DDS::InstanceHandle_t get_instance_handle() override { return entity_handle_; }
  char* get_type_name() override { return CORBA::string_dup(type_name_.c_str()); }
  char* get_name() override { return CORBA::string_dup(name_.c_str()); }
  DDS::DomainParticipant_ptr get_participant() override;
  DDS::ReturnCode_t get_qos(DDS::TopicQos& qos) override;

  const std::string& name() const { return name_; }
  const std::string& type_name() const { return type_name_; }
  const DDS::TopicQos& qos() const { return qos_; }
  OpenDDS::DCPS::TypeSupportImpl& type_support() const { return *type_support_.in(); }
  dds_entity_t cyclone() const { return topic_; }
  const ParticipantImpl* owner() const { return participant_.in(); }

  /// Readers and writers say when they begin and end to use the topic.
  void add_user() { ++users_; }
  void remove_user() { --users_; }
  bool in_use() const { return users_ != 0; }

private:
  const DDS::InstanceHandle_t entity_handle_;
  const Reference<ParticipantImpl> participant_;
  const std::string name_;
  const std::string type_name_;
  const DDS::TopicQos qos_;
  const Reference<OpenDDS::DCPS::TypeSupportImpl> type_support_;
  std::atomic<dds_entity_t> topic_{0};
  std::atomic<int> users_{0};
};

}  // namespace dcps
