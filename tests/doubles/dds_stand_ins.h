#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "tests/doubles/call_log.h"
#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace doubles {

/// A participant that stands in front of the real one: everything is forwarded, except for the steps that are told to
/// be refused. Any thread; keeps its state alive for the entities made through it.
///
/// Steps, by their names in the log (each behind "dds "): create_publisher, create_topic, get_default_datawriter_qos,
/// create_datawriter, narrow_writer, register_instance, write, delete_contained_entities of publisher,
/// delete_publisher, delete_topic, create_subscriber, get_default_datareader_qos, create_datareader,
/// delete_contained_entities of subscriber, delete_subscriber. A write is logged as "dds write <value> <quality>
/// <source> <timestamp> <handle>".
class DdsStandIn {
public:
  DdsStandIn();
  ~DdsStandIn();
  DdsStandIn(const DdsStandIn&) = delete;
  DdsStandIn& operator=(const DdsStandIn&) = delete;

  /// The step gives nil or RETCODE_ERROR from now on; "narrow_writer": writers are made that have no type. Deletions
  /// that are refused are made all the same.
  DdsStandIn& refuses(const std::string& step);
  /// Every such step from now on runs `action` first.
  DdsStandIn& runs_first(const std::string& step, std::function<void()> action);
  /// The real entity is made, and `action` runs before the step returns.
  DdsStandIn& runs_last(const std::string& step, std::function<void()> action);

  /// The next reader is made, and this one is returned in its stead. Takes over the reference.
  DdsStandIn& hands_out(DDS::DataReader_ptr reader);

  DDS::DomainParticipant_ptr participant() const;
  /// The stand-in shows no handle of its own: the engine then keeps the types registered with it apart from the real
  /// participant's.
  DdsStandIn& has_no_handle();

  /// What the last writer and the last reader were made with.
  DDS::DataWriterQos writer_qos() const;
  DDS::DataReaderQos reader_qos() const;
  /// The listener of the last reader; nil when there was none. The caller owns the reference.
  DDS::DataReaderListener_ptr reader_listener() const;
  /// The status masks of all that was made, and whether any of it but the reader was given a listener.
  std::set<DDS::StatusMask> masks() const;
  /// Writers made here that somebody still refers to.
  unsigned int living_writers() const;
  bool listeners_given() const;

  /// What the stand-ins share.
  class State;

private:
  std::shared_ptr<State> state_;
  DDS::DomainParticipant_var participant_;
};

/// While it lives, the participant knows the type name of attribute `Taken` as that of another type, so that
/// registering `Taken` is refused. The participant has no type of that name yet.
template <typename Taken, typename Other>
class TypeNameTaken {
public:
  explicit TypeNameTaken(DDS::DomainParticipant_ptr participant)
      : participant_(DDS::DomainParticipant::_duplicate(participant)), other_(new typename Other::TypeSupportImpl) {
    const typename Taken::TypeSupport_var taken = new typename Taken::TypeSupportImpl;
    name_ = taken->get_type_name();
    other_->register_type(participant_.in(), name_.in());
  }
  ~TypeNameTaken() { other_->unregister_type(participant_.in(), name_.in()); }
  TypeNameTaken(const TypeNameTaken&) = delete;
  TypeNameTaken& operator=(const TypeNameTaken&) = delete;

private:
  DDS::DomainParticipant_var participant_;
  CORBA::String_var name_;
  typename Other::TypeSupport_var other_;
};

/// A typed reader of void attributes that yields what it is told.
class ScriptedReader : public virtual OpenDDS::DCPS::LocalObject<Varnok::QTNN_DDS::ATTR_VOIDDataReader> {
public:
  /// The next take yields this, and so do all after it.
  ScriptedReader(DDS::ReturnCode_t result, bool valid_data, DDS::InstanceStateKind state);
  ~ScriptedReader() override;

  /// Readers of this kind that still live.
  static unsigned int alive();

  unsigned int takes() const { return takes_; }

  DDS::ReturnCode_t take_next_sample(Varnok::QTNN_DDS::ATTR_VOID& sample, DDS::SampleInfo& info) override;
  DDS::ReturnCode_t enable() override;
  DDS::InstanceHandle_t get_instance_handle() override;
  DDS::ReturnCode_t get_qos(DDS::DataReaderQos& qos) override;
  DDS::TopicDescription_ptr get_topicdescription() override;
  DDS::Subscriber_ptr get_subscriber() override;
  DDS::ReturnCode_t get_subscription_matched_status(DDS::SubscriptionMatchedStatus& status) override;

private:
  DDS::ReturnCode_t result_;
  bool valid_data_;
  DDS::InstanceStateKind state_;
  std::atomic<unsigned int> takes_{0};
};

}  // namespace doubles
