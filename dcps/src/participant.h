#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <dds/dds.h>

#include <dds/DCPS/LocalObject.h>
#include <dds/DdsDcpsDomainC.h>

#include "dcps/src/delivery.h"
#include "dcps/src/references.h"

namespace dcps {

class PublisherImpl;
class SubscriberImpl;
class TopicImpl;

class ParticipantImpl final : public virtual OpenDDS::DCPS::LocalObject<DDS::DomainParticipant> {
public:
  explicit ParticipantImpl(DDS::DomainId_t domain);
  ~ParticipantImpl() override;

  /// Joins the domain. False: Cyclone refuses.
  bool open();
  void close();
  /// True: nothing made from it is left.
  bool is_clean();

  DDS::ReturnCode_t enable() override { return DDS::RETCODE_OK; }
  DDS::InstanceHandle_t get_instance_handle() override { return entity_handle_; }
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
  DDS::ReturnCode_t get_qos(DDS::DomainParticipantQos& qos) override;
  DDS::DomainId_t get_domain_id() override { return domain_; }
  DDS::ReturnCode_t get_default_publisher_qos(DDS::PublisherQos& qos) override;
  DDS::ReturnCode_t get_default_subscriber_qos(DDS::SubscriberQos& qos) override;
  DDS::ReturnCode_t set_default_topic_qos(const DDS::TopicQos& qos) override;
  DDS::ReturnCode_t get_default_topic_qos(DDS::TopicQos& qos) override;

  dds_entity_t cyclone() const { return participant_; }
  const std::shared_ptr<Delivery>& delivery() const { return delivery_; }

private:
  /// A topic and how often it has been made and not yet deleted.
  struct NamedTopic {
    Reference<TopicImpl> topic;
    int uses;
  };

  const DDS::InstanceHandle_t entity_handle_;
  const DDS::DomainId_t domain_;
  const std::shared_ptr<Delivery> delivery_;
  std::atomic<dds_entity_t> participant_{0};
  std::mutex mutex_;  ///< guards what follows
  DDS::TopicQos topic_qos_;
  std::vector<Reference<PublisherImpl>> publishers_;
  std::vector<Reference<SubscriberImpl>> subscribers_;
  std::map<std::string, NamedTopic> topics_;
};

}  // namespace dcps
