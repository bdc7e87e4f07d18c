#include "dcps/src/participant.h"

#include "dcps/src/publisher.h"
#include "dcps/src/subscriber.h"
#include "dcps/src/topic.h"

namespace dcps {

ParticipantImpl::ParticipantImpl(DDS::DomainId_t domain) : domain_(domain) {}

ParticipantImpl::~ParticipantImpl() = default;

bool ParticipantImpl::open() {
  return domain_ >= 0 && adopt(dds_create_participant(static_cast<dds_domainid_t>(domain_), nullptr, nullptr));
}

void ParticipantImpl::close() {
  delete_contained_entities();
  listeners_->stop();
  dds_delete(give_up());
}

bool ParticipantImpl::is_clean() const {
  const std::lock_guard lock(mutex_);
  return publishers_.empty() && subscribers_.empty() && topics_.empty();
}

DDS::ReturnCode_t ParticipantImpl::add_type(const std::string& name, OpenDDS::DCPS::TypeSupportImpl& type) {
  const std::lock_guard lock(mutex_);
  const auto [entry, is_new] = types_.try_emplace(name, add_reference(&type));
  const bool same = is_new || &entry->second->descriptor() == &type.descriptor();
  return same ? DDS::RETCODE_OK : DDS::RETCODE_ERROR;
}

DDS::Publisher_ptr ParticipantImpl::create_publisher(const DDS::PublisherQos&, DDS::PublisherListener_ptr listener,
                                                     DDS::StatusMask) {
  const Reference<PublisherImpl> publisher = new PublisherImpl(*this);
  if (!CORBA::is_nil(listener) || !publisher->open()) {
    return DDS::Publisher::_nil();
  }
  publishers_.add(*publisher.in());
  return DDS::Publisher::_duplicate(publisher.in());
}

DDS::ReturnCode_t ParticipantImpl::delete_publisher(DDS::Publisher_ptr publisher) {
  return publishers_.close_one(publisher, [](const PublisherImpl& known) { return known.is_clean(); });
}

DDS::Subscriber_ptr ParticipantImpl::create_subscriber(const DDS::SubscriberQos&, DDS::SubscriberListener_ptr listener,
                                                       DDS::StatusMask) {
  const Reference<SubscriberImpl> subscriber = new SubscriberImpl(*this);
  if (!CORBA::is_nil(listener) || !subscriber->open()) {
    return DDS::Subscriber::_nil();
  }
  subscribers_.add(*subscriber.in());
  return DDS::Subscriber::_duplicate(subscriber.in());
}

DDS::ReturnCode_t ParticipantImpl::delete_subscriber(DDS::Subscriber_ptr subscriber) {
  return subscribers_.close_one(subscriber, [](const SubscriberImpl& known) { return known.is_clean(); });
}

DDS::Topic_ptr ParticipantImpl::create_topic(const char* topic_name, const char* type_name, const DDS::TopicQos&,
                                             DDS::TopicListener_ptr listener, DDS::StatusMask) {
  if (topic_name == nullptr || type_name == nullptr || !CORBA::is_nil(listener)) {
    return DDS::Topic::_nil();
  }
  const std::lock_guard lock(mutex_);
  const auto existing = topics_.find(topic_name);
  if (existing == topics_.end()) {
    Reference<TopicImpl> topic = new_topic(topic_name, type_name);
    if (!CORBA::is_nil(topic)) {
      topics_.emplace(topic_name, NamedTopic{topic, 1});
    }
    return topic._retn();
  }
  NamedTopic& named = existing->second;
  if (named.topic->type_name() != type_name) {
    return DDS::Topic::_nil();
  }
  ++named.uses;
  return DDS::Topic::_duplicate(named.topic.in());
}

Reference<TopicImpl> ParticipantImpl::new_topic(const std::string& name, const std::string& type_name) {
  const auto type = types_.find(type_name);
  if (type == types_.end()) {
    return {};
  }
  const Reference<TopicImpl> topic = new TopicImpl(*this, name, type_name, type->second);
  return topic->open() ? topic : Reference<TopicImpl>();
}

DDS::ReturnCode_t ParticipantImpl::delete_topic(DDS::Topic_ptr topic) {
  const Reference<TopicImpl> known = narrow<TopicImpl>(topic);
  if (CORBA::is_nil(known)) {
    return DDS::RETCODE_ERROR;
  }
  const std::lock_guard lock(mutex_);
  if (known->owner() != this || known->in_use()) {
    return DDS::RETCODE_PRECONDITION_NOT_MET;
  }
  const auto entry = topics_.find(known->name());
  if (entry == topics_.end() || entry->second.topic.in() != known.in()) {
    return DDS::RETCODE_ERROR;
  }
  if (--entry->second.uses == 0) {
    topics_.erase(entry);
    known->close();
  }
  return DDS::RETCODE_OK;
}

DDS::ReturnCode_t ParticipantImpl::delete_contained_entities() {
  publishers_.close_all();
  subscribers_.close_all();
  decltype(types_) types;
  decltype(topics_) topics;
  {
    const std::lock_guard lock(mutex_);
    types.swap(types_);
    topics.swap(topics_);
  }
  for (const auto& [name, named] : topics) {
    named.topic->close();
  }
  return DDS::RETCODE_OK;
}

}  // namespace dcps
