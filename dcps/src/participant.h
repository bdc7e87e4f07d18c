#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include <dcps/entity.h>
#include <dds/DCPS/TypeSupportImpl.h>
#include <dds/DdsDcpsDomainC.h>

#include "dcps/src/contained.h"
#include "dcps/src/listener_thread.h"

namespace dcps {

class PublisherImpl;
class SubscriberImpl;
class TopicImpl;

class ParticipantImpl final : public EntityImpl<DDS::DomainParticipant> {
public:
  explicit ParticipantImpl(DDS::DomainId_t domain);
  ~ParticipantImpl() override;

  /// Joins the domain. False if Cyclone refuses.
  bool open();
  void close();
  /// True if nothing made from it is left.
  bool is_clean() const;
  /// Registers a type. Returns RETCODE_ERROR if the name is taken by another type.
  DDS::ReturnCode_t add_type(const std::string& name, OpenDDS::DCPS::TypeSupportImpl& type);

  DDS::Publisher_ptr create_publisher(const DDS::PublisherQos& qos, DDS::PublisherListener_ptr listener,
                                      DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_publisher(DDS::Publisher_ptr publisher) override;
  DDS::Subscriber_ptr create_subscriber(const DDS::SubscriberQos& qos, DDS::SubscriberListener_ptr listener,
                                        DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_subscriber(DDS::Subscriber_ptr subscriber) override;
  DDS::Topic_ptr create_topic(const char* topic_name, const char* type_name, const DDS::TopicQos& qos,
                              DDS::TopicListener_ptr listener, DDS::StatusMask mask) override;
  DDS::ReturnCode_t delete_topic(DDS::Topic_ptr topic) override;
  DDS::ReturnCode_t delete_contained_entities() override;
  DDS::DomainId_t get_domain_id() override { return domain_; }

  ListenerThread& listeners() const { return *listeners_; }

private:
  /// A topic, and how often it was made and not yet deleted.
  struct NamedTopic {
    Reference<TopicImpl> topic;
    int uses;
  };

  Reference<TopicImpl> new_topic(const std::string& name, const std::string& type_name);

  const DDS::DomainId_t domain_;
  const std::shared_ptr<ListenerThread> listeners_ = std::make_shared<ListenerThread>();
  Contained<PublisherImpl> publishers_;
  Contained<SubscriberImpl> subscribers_;
  mutable std::mutex mutex_;  ///< guards what follows
  std::map<std::string, Reference<OpenDDS::DCPS::TypeSupportImpl>> types_;
  std::map<std::string, NamedTopic> topics_;
};

}  // namespace dcps
