#pragma once

#include <dcps/dds_start.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "tests/doubles/call_log.h"
#include "tests/doubles/fake_varnok.h"
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
class FakeDds {
public:
  explicit FakeDds(DDS::DomainParticipant_ptr real = real_participant());
  ~FakeDds();
  FakeDds(const FakeDds&) = delete;
  FakeDds& operator=(const FakeDds&) = delete;

  /// The step gives nil or RETCODE_ERROR from now on; "narrow_writer": writers are made that have no type. Deletions
  /// that are refused are made all the same.
  FakeDds& refuses(const std::string& step);
  /// Every such step from now on runs `action` first.
  FakeDds& runs_first(const std::string& step, std::function<void()> action);
  /// The real entity is made, and `action` runs before the step returns.
  FakeDds& runs_last(const std::string& step, std::function<void()> action);

  /// The next reader is made, and this one is returned in its stead. Takes over the reference.
  FakeDds& hands_out(DDS::DataReader_ptr reader);

  DDS::DomainParticipant_ptr participant() const;

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

/// A participant of its own that knows the type name of attribute `Taken` as that of another type, so that registering
/// `Taken` with it is refused.
template <typename Taken, typename Other>
class TypeNameTaken {
public:
  TypeNameTaken() : factory_(dcps::start_dds()) {
    participant_ = factory_->create_participant(real_domain(), PARTICIPANT_QOS_DEFAULT,
                                                DDS::DomainParticipantListener::_nil(), Varnok::ALL_STATUSES);
    const typename Taken::TypeSupport_var taken = new typename Taken::TypeSupportImpl;
    const typename Other::TypeSupport_var other = new typename Other::TypeSupportImpl;
    const CORBA::String_var name = taken->get_type_name();
    other->register_type(participant_.in(), name.in());
  }
  ~TypeNameTaken() {
    participant_->delete_contained_entities();
    factory_->delete_participant(participant_.in());
  }
  TypeNameTaken(const TypeNameTaken&) = delete;
  TypeNameTaken& operator=(const TypeNameTaken&) = delete;

  DDS::DomainParticipant_ptr participant() const { return participant_.in(); }

private:
  DDS::DomainParticipantFactory_var factory_;
  DDS::DomainParticipant_var participant_;
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
  DDS::InstanceHandle_t get_instance_handle() override;

private:
  DDS::ReturnCode_t result_;
  bool valid_data_;
  DDS::InstanceStateKind state_;
  std::atomic<unsigned int> takes_{0};
};

}  // namespace doubles
