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
/// Only readers have listeners. Other entities are not made with one: their create operations return nil.
class __attribute__((visibility("default"))) DomainParticipant : public virtual Entity {
public:
  DCPS_INTERFACE_BODY(DomainParticipant)

  /// The caller owns the returned reference, here and below; nil if the engine refuses.
  virtual Publisher_ptr create_publisher(const PublisherQos& qos, PublisherListener_ptr a_listener,
                                         StatusMask mask) = 0;
  /// Returns RETCODE_PRECONDITION_NOT_MET if it still has writers, RETCODE_ERROR if it is not this participant's.
  virtual ReturnCode_t delete_publisher(Publisher_ptr p) = 0;
  virtual Subscriber_ptr create_subscriber(const SubscriberQos& qos, SubscriberListener_ptr a_listener,
                                           StatusMask mask) = 0;
  /// Returns RETCODE_PRECONDITION_NOT_MET if it still has readers, RETCODE_ERROR if it is not this participant's.
  virtual ReturnCode_t delete_subscriber(Subscriber_ptr s) = 0;
  /// Returns the existing topic if there is one of that name and type. Nil if the type is not registered, if the name
  /// is taken by a topic of another type, or if it has characters other than letters, digits, '_' and '/', or a leading
  /// digit.
  virtual Topic_ptr create_topic(const char* topic_name, const char* type_name, const TopicQos& qos,
                                 TopicListener_ptr a_listener, StatusMask mask) = 0;
  /// A topic ends once it has been deleted as often as it was made. Returns RETCODE_PRECONDITION_NOT_MET if a reader or
  /// writer still uses it or if it is another participant's, RETCODE_ERROR if it is not of this engine.
  virtual ReturnCode_t delete_topic(Topic_ptr a_topic) = 0;
  /// Deletes everything made from this participant and forgets the registered types.
  virtual ReturnCode_t delete_contained_entities() = 0;

  virtual DomainId_t get_domain_id() = 0;
};

/// Makes and owns participants; one per process.
class __attribute__((visibility("default"))) DomainParticipantFactory : public virtual dcps::LocalInterface {
public:
  DCPS_INTERFACE_BODY(DomainParticipantFactory)

  /// The caller owns the returned reference; nil if the domain cannot be joined. Network and discovery are configured
  /// by the environment variable CYCLONEDDS_URI; without it, the machine's default interface is used.
  virtual DomainParticipant_ptr create_participant(DomainId_t domainId, const DomainParticipantQos& qos,
                                                   DomainParticipantListener_ptr a_listener, StatusMask mask) = 0;
  /// Returns RETCODE_BAD_PARAMETER if it is nil, RETCODE_PRECONDITION_NOT_MET if it still has entities, RETCODE_ERROR
  /// if it is not of this engine or already deleted.
  virtual ReturnCode_t delete_participant(DomainParticipant_ptr a_participant) = 0;
};

}  // namespace DDS
