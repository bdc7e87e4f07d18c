#include "dcps/src/participant.h"

#include <algorithm>

#include "dcps/src/engine.h"
#include "dcps/src/publisher.h"
#include "dcps/src/qos.h"
#include "dcps/src/subscriber.h"
#include "dcps/src/thread_role.h"
#include "dcps/src/topic.h"
#include "dcps/src/type_registry.h"

namespace dcps {

namespace {

/// Takes the entity out of its owner's list. False: it is not in it.
template <typename Object>
bool remove(std::vector<Reference<Object>>& objects, const Object* object) {
  const auto found = std::find_if(objects.begin(), objects.end(),
                                  [&](const Reference<Object>& candidate) { return candidate.in() == object; });
  if (found == objects.end()) {
    return false;
  }
  objects.erase(found);
  return true;
}

template <typename Qos>
bool is_acceptable(const Qos& qos) {
  return is_marked_default(qos) || qos.presentation.access_scope == DDS::INSTANCE_PRESENTATION_QOS;
}

}  // namespace

ParticipantImpl::ParticipantImpl(DDS::DomainId_t domain)
    : entity_handle_(next_instance_handle()),
      domain_(domain),
      delivery_(std::make_shared<Delivery>()),
      topic_qos_(initial_topic_qos()) {}

ParticipantImpl::~ParticipantImpl() = default;

bool ParticipantImpl::open() {
  if (domain_ < 0) {
    return false;
  }
  const dds_entity_t participant = dds_create_participant(static_cast<dds_domainid_t>(domain_), nullptr, nullptr);
  if (participant < 0) {
    return false;
  }
  participant_ = participant;
  return true;
}

void ParticipantImpl::close() {
  const dds_entity_t participant = participant_.exchange(0);
  if (participant > 0) {
    delete_in_cyclone(participant, this, delivery_);
  }
}

bool ParticipantImpl::is_clean() {
  const std::lock_guard lock(mutex_);
  return publishers_.empty() && subscribers_.empty() && topics_.empty();
}

DDS::Publisher_ptr ParticipantImpl::create_publisher(const DDS::PublisherQos& qos, DDS::PublisherListener_ptr listener,
                                                     DDS::StatusMask) {
  if (!CORBA::is_nil(listener) || !is_acceptable(qos)) {
    return DDS::Publisher::_nil();
  }
  const Reference<PublisherImpl> publisher = new PublisherImpl(*this);
  if (!publisher->open()) {
    return DDS::Publisher::_nil();
  }
  const std::lock_guard lock(mutex_);
  publishers_.push_back(publisher);
  return DDS::Publisher::_duplicate(publisher.in());
}

DDS::ReturnCode_t ParticipantImpl::delete_publisher(DDS::Publisher_ptr publisher) {
  const Reference<PublisherImpl> known = narrow<PublisherImpl>(publisher);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  if (!known->is_clean()) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  {
    const std::lock_guard lock(mutex_);
    if (!remove<PublisherImpl>(publishers_, known.in())) {
      return DDS::RETCODE_ERROR;
    }
  }
  known->close();
  return DDS::RETCODE_OK;
}

DDS::Subscriber_ptr ParticipantImpl::create_subscriber(const DDS::SubscriberQos& qos,
                                                       DDS::SubscriberListener_ptr listener, DDS::StatusMask) {
  if (!CORBA::is_nil(listener) || !is_acceptable(qos)) {
    return DDS::Subscriber::_nil();
  }
  const Reference<SubscriberImpl> subscriber = new SubscriberImpl(*this);
  if (!subscriber->open()) {
    return DDS::Subscriber::_nil();
  }
  const std::lock_guard lock(mutex_);
  subscribers_.push_back(subscriber);
  return DDS::Subscriber::_duplicate(subscriber.in());
}

DDS::ReturnCode_t ParticipantImpl::delete_subscriber(DDS::Subscriber_ptr subscriber) {
  const Reference<SubscriberImpl> known = narrow<SubscriberImpl>(subscriber);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  if (!known->is_clean()) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  {
    const std::lock_guard lock(mutex_);
    if (!remove<SubscriberImpl>(subscribers_, known.in())) {
      return DDS::RETCODE_ERROR;
    }
  }
  known->close();
  return DDS::RETCODE_OK;
}

DDS::Topic_ptr ParticipantImpl::create_topic(const char* topic_name, const char* type_name, const DDS::TopicQos& qos,
                                             DDS::TopicListener_ptr listener, DDS::StatusMask) {
  if (topic_name == nullptr || type_name == nullptr || !CORBA::is_nil(listener)) {
    return DDS::Topic::_nil();
  }
  Reference<OpenDDS::DCPS::TypeSupportImpl> type = TypeRegistry::instance().find(this, type_name);
  const std::lock_guard lock(mutex_);
  const DDS::TopicQos wanted = is_marked_default(qos) ? topic_qos_ : qos;
  const auto existing = topics_.find(topic_name);
  if (existing != topics_.end()) {
    NamedTopic& named = existing->second;
    if (named.topic->type_name() != type_name || !same(named.topic->qos(), wanted)) {
      return DDS::Topic::_nil();
    }
    ++named.uses;
    return DDS::Topic::_duplicate(named.topic.in());
  }
  if (CORBA::is_nil(type)) {
    return DDS::Topic::_nil();
  }
  const Reference<TopicImpl> topic = new TopicImpl(*this, topic_name, type_name, wanted, type);
  if (!topic->open()) {
    return DDS::Topic::_nil();
  }
  topics_.emplace(topic_name, NamedTopic{topic, 1});
  return DDS::Topic::_duplicate(topic.in());
}

DDS::ReturnCode_t ParticipantImpl::delete_topic(DDS::Topic_ptr topic) {
  const Reference<TopicImpl> known = narrow<TopicImpl>(topic);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  if (known->owner() != this) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  const std::lock_guard lock(mutex_);
  if (known->in_use()) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  const auto entry = topics_.find(known->name());
  if (entry == topics_.end() || entry->second.topic.in() != known.in()) {
    return DDS::RETCODE_ERROR;
  }
  if (--entry->second.uses > 0) {
    return DDS::RETCODE_OK;
  }
  topics_.erase(entry);
  known->close();
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::delete_contained_entities() {
  std::vector<Reference<PublisherImpl>> publishers;
  std::vector<Reference<SubscriberImpl>> subscribers;
  std::map<std::string, NamedTopic> topics;
  {
    const std::lock_guard lock(mutex_);
    publishers.swap(publishers_);
    subscribers.swap(subscribers_);
    topics.swap(topics_);
  }
  for (const auto& publisher : publishers) {
    publisher->close();
  }
  for (const auto& subscriber : subscribers) {
    subscriber->close();
  }
  for (const auto& [name, named] : topics) {
    named.topic->close();
  }
  TypeRegistry::instance().remove_all(this);
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::get_qos(DDS::DomainParticipantQos& qos) {
  qos = {};
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::get_default_publisher_qos(DDS::PublisherQos& qos) {
  qos = {};
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::get_default_subscriber_qos(DDS::SubscriberQos& qos) {
  qos = {};
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::set_default_topic_qos(const DDS::TopicQos& qos) {
  if (is_marked_default(qos)) {
    return DDS::RETCODE_INCONSISTENT_POLICY;
  }
  const std::lock_guard lock(mutex_);
  topic_qos_ = qos;
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::get_default_topic_qos(DDS::TopicQos& qos) {
  const std::lock_guard lock(mutex_);
  qos = topic_qos_;
  return DDS::RETCODE_OK;
}

}  // namespace dcps
