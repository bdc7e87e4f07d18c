#pragma once

#include <dcps/dds_start.h>
#include <engine/fake_entities.h>

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

/// A fake participant that forwards everything to the real one except the steps that are set to fail. Any thread; keeps
/// its state alive for the entities made through it.
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

  /// The step returns nil or RETCODE_ERROR from now on; "narrow_writer": new writers have no type. Deletions that are
  /// set to fail still delete the entity.
  FakeDds& refuses(const std::string& step);
  /// From now on every such step runs `action` first.
  FakeDds& runs_first(const std::string& step, std::function<void()> action);
  /// The real entity is made, and `action` runs before the step returns.
  FakeDds& runs_last(const std::string& step, std::function<void()> action);

  /// The next reader is made, but this one is returned instead. Takes over the reference.
  FakeDds& hands_out(DDS::DataReader_ptr reader);

  DDS::DomainParticipant_ptr participant() const;

  /// The QoS of the last writer and the last reader made.
  DDS::DataWriterQos writer_qos() const;
  DDS::DataReaderQos reader_qos() const;
  /// The listener of the last reader; nil if it had none. The caller owns the reference.
  DDS::DataReaderListener_ptr reader_listener() const;
  /// The status masks of all entities made.
  std::set<DDS::StatusMask> masks() const;
  /// Number of writers made here that still have references.
  unsigned int living_writers() const;
  /// Whether an entity other than a reader was given a listener.
  bool listeners_given() const;

  /// State shared by the fake entities.
  class State;

private:
  std::shared_ptr<State> state_;
  DDS::DomainParticipant_var participant_;
};

/// A fake participant in front of a separate real one. The type name of attribute `Taken` is registered for another
/// type, so that registering `Taken` fails.
template <typename Taken, typename Other>
class TypeNameTaken {
public:
  TypeNameTaken()
      : factory_(dcps::start_dds()),
        real_(factory_->create_participant(real_domain(), PARTICIPANT_QOS_DEFAULT,
                                           DDS::DomainParticipantListener::_nil(), Varnok::ALL_STATUSES)),
        dds_(real_.in()) {
    const typename Taken::TypeSupport_var taken = new typename Taken::TypeSupportImpl;
    const typename Other::TypeSupport_var other = new typename Other::TypeSupportImpl;
    const CORBA::String_var name = taken->get_type_name();
    other->register_type(participant(), name.in());
  }
  ~TypeNameTaken() {
    real_->delete_contained_entities();
    factory_->delete_participant(real_.in());
  }
  TypeNameTaken(const TypeNameTaken&) = delete;
  TypeNameTaken& operator=(const TypeNameTaken&) = delete;

  DDS::DomainParticipant_ptr participant() const { return dds_.participant(); }

private:
  DDS::DomainParticipantFactory_var factory_;
  DDS::DomainParticipant_var real_;
  FakeDds dds_;
};

/// A typed reader of void attributes with preset results.
class ScriptedReader : public FakeTypedReaderBase<Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>> {
public:
  /// Every take returns this.
  ScriptedReader(DDS::ReturnCode_t result, bool valid_data, DDS::InstanceStateKind state);
  ~ScriptedReader() override;

  /// Number of readers of this kind that still exist.
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
