#pragma once

#include <dds/DdsDcpsPublicationC.h>
#include <dds/DdsDcpsSubscriptionC.h>
#include <dds/DdsDcpsTopicC.h>

namespace DDS {

class __attribute__((visibility("default"))) DomainParticipantListener : public virtual TopicListener,
                                                                         public virtual PublisherListener,
                                                                         public virtual SubscriberListener {
public:
  DCPS_INTERFACE_BODY(DomainParticipantListener)
};

/// A process's membership of a domain; makes and owns topics, publishers and subscribers.
///
/// Listeners belong to readers and writers here: an entity of another kind is made with a nil one, else it is refused.
class __attribute__((visibility("default"))) DomainParticipant : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(DomainParticipant)

  /// …_QOS_DEFAULT stands for the participant's default QoS. The caller owns the returned reference; nil: refused.
  virtual Publisher_ptr create_publisher(const PublisherQos& qos, PublisherListener_ptr a_listener,
                                         StatusMask mask) = 0;
  /// RETCODE_PRECONDITION_NOT_MET: it still has writers; RETCODE_ERROR: it is none of this participant's.
  virtual ReturnCode_t delete_publisher(Publisher_ptr p) = 0;
  virtual Subscriber_ptr create_subscriber(const SubscriberQos& qos, SubscriberListener_ptr a_listener,
                                           StatusMask mask) = 0;
  /// RETCODE_PRECONDITION_NOT_MET: it still has readers; RETCODE_ERROR: it is none of this participant's.
  virtual ReturnCode_t delete_subscriber(Subscriber_ptr s) = 0;
  /// The same name, type and QoS again give the same topic. Nil: the type is not registered, the topic exists with
  /// another type or QoS, or its name has other characters than letters, digits, '_' and '/', or a digit first.
  virtual Topic_ptr create_topic(const char* topic_name, const char* type_name, const TopicQos& qos,
                                 TopicListener_ptr a_listener, StatusMask mask) = 0;
  /// A topic goes when it has been deleted as often as it was made. RETCODE_PRECONDITION_NOT_MET: a reader or writer
  /// still uses it, or it is another participant's; RETCODE_ERROR: it is none of this engine's.
  virtual ReturnCode_t delete_topic(Topic_ptr a_topic) = 0;
  /// Deletes everything made from this participant and forgets the types registered with it.
  virtual ReturnCode_t delete_contained_entities() = 0;

  virtual ReturnCode_t get_qos(DomainParticipantQos& qos) = 0;
  virtual DomainId_t get_domain_id() = 0;
  virtual ReturnCode_t get_default_publisher_qos(PublisherQos& qos) = 0;
  virtual ReturnCode_t get_default_subscriber_qos(SubscriberQos& qos) = 0;
  virtual ReturnCode_t set_default_topic_qos(const TopicQos& qos) = 0;
  virtual ReturnCode_t get_default_topic_qos(TopicQos& qos) = 0;
};

/// Makes and owns participants; there is one in a process.
class __attribute__((visibility("default"))) DomainParticipantFactory : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(DomainParticipantFactory)

  /// The caller owns the returned reference; nil: the domain cannot be joined. Network and discovery are configured by
  /// the environment variable CYCLONEDDS_URI; without it the machine's default interface is used.
  virtual DomainParticipant_ptr create_participant(DomainId_t domainId, const DomainParticipantQos& qos,
                                                   DomainParticipantListener_ptr a_listener, StatusMask mask) = 0;
  /// RETCODE_BAD_PARAMETER: nil; RETCODE_PRECONDITION_NOT_MET: it still has entities; RETCODE_ERROR: none of this
  /// engine's, or deleted already.
  virtual ReturnCode_t delete_participant(DomainParticipant_ptr a_participant) = 0;
  /// Some participant of that domain; nil: there is none. The caller owns the reference.
  virtual DomainParticipant_ptr lookup_participant(DomainId_t domainId) = 0;
  virtual ReturnCode_t get_default_participant_qos(DomainParticipantQos& qos) = 0;
};

}  // namespace DDS
