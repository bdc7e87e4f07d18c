#pragma once

#include <atomic>
#include <string>

#include <dcps/entity.h>
#include <dds/DCPS/TypeSupportImpl.h>

namespace dcps {

class ParticipantImpl;

class TopicImpl final : public EntityImpl<DDS::Topic> {
public:
  TopicImpl(ParticipantImpl& participant, std::string name, std::string type_name,
            const Reference<OpenDDS::DCPS::TypeSupportImpl>& type_support);
  ~TopicImpl() override;

  /// False if Cyclone refuses.
  bool open();
  void close();

  char* get_type_name() override { return CORBA::string_dup(type_name_.c_str()); }
  char* get_name() override { return CORBA::string_dup(name_.c_str()); }

  const std::string& name() const { return name_; }
  const std::string& type_name() const { return type_name_; }
  OpenDDS::DCPS::TypeSupportImpl& type_support() const { return *type_support_.in(); }
  const ParticipantImpl* owner() const { return participant_.in(); }

  /// Called by readers and writers when they start and stop using the topic.
  void add_user() { ++users_; }
  void remove_user() { --users_; }
  bool in_use() const { return users_ != 0; }

private:
  const Reference<ParticipantImpl> participant_;
  const std::string name_;
  const std::string type_name_;
  const Reference<OpenDDS::DCPS::TypeSupportImpl> type_support_;
  std::atomic<int> users_{0};
};

}  // namespace dcps
