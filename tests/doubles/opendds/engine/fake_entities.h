#pragma once

#include <stdexcept>
#include <string>

#include <dds/DCPS/LocalObject.h>
#include <dds/DCPS/Registered_Data_Types.h>
#include <dds/DCPS/TypeSupportImpl.h>
#include <dds/DdsDcpsDomainC.h>
#include <dds/DdsDcpsSubscriptionExtC.h>

// Bases of the fake entities, one version per engine. Here they implement the operations that only OpenDDS declares;
// each throws std::logic_error, because the library calls none of them.

namespace doubles {

/// Throws. `operation`: by default, the function that calls this.
[[noreturn]] inline void unexpected(const char* operation = __builtin_FUNCTION()) {
  throw std::logic_error(std::string("no call of ") + operation + " was expected");
}

template <typename Interface>
class FakeEntityBase : public virtual OpenDDS::DCPS::LocalObject<Interface> {
public:
  DDS::ReturnCode_t enable() override { unexpected(); }
  DDS::StatusCondition_ptr get_statuscondition() override { unexpected(); }
  DDS::StatusMask get_status_changes() override { unexpected(); }
};

class FakeParticipantBase : public FakeEntityBase<DDS::DomainParticipant> {
public:
  ~FakeParticipantBase() override { OpenDDS::DCPS::Registered_Data_Types->unregister_participant(this); }

  DDS::Subscriber_ptr get_builtin_subscriber() override { unexpected(); }
  DDS::Topic_ptr find_topic(const char*, const DDS::Duration_t&) override { unexpected(); }
  DDS::TopicDescription_ptr lookup_topicdescription(const char*) override { unexpected(); }
  DDS::ContentFilteredTopic_ptr create_contentfilteredtopic(const char*, DDS::Topic_ptr, const char*,
                                                            const DDS::StringSeq&) override {
    unexpected();
  }
  DDS::ReturnCode_t delete_contentfilteredtopic(DDS::ContentFilteredTopic_ptr) override { unexpected(); }
  DDS::MultiTopic_ptr create_multitopic(const char*, const char*, const char*, const DDS::StringSeq&) override {
    unexpected();
  }
  DDS::ReturnCode_t delete_multitopic(DDS::MultiTopic_ptr) override { unexpected(); }
  CORBA::Boolean contains_entity(DDS::InstanceHandle_t) override { unexpected(); }
  DDS::ReturnCode_t set_qos(const DDS::DomainParticipantQos&) override { unexpected(); }
  DDS::ReturnCode_t get_qos(DDS::DomainParticipantQos&) override { unexpected(); }
  DDS::ReturnCode_t set_listener(DDS::DomainParticipantListener_ptr, DDS::StatusMask) override { unexpected(); }
  DDS::DomainParticipantListener_ptr get_listener() override { unexpected(); }
  DDS::ReturnCode_t ignore_participant(DDS::InstanceHandle_t) override { unexpected(); }
  DDS::ReturnCode_t ignore_topic(DDS::InstanceHandle_t) override { unexpected(); }
  DDS::ReturnCode_t ignore_publication(DDS::InstanceHandle_t) override { unexpected(); }
  DDS::ReturnCode_t ignore_subscription(DDS::InstanceHandle_t) override { unexpected(); }
  DDS::ReturnCode_t assert_liveliness() override { unexpected(); }
  DDS::ReturnCode_t set_default_publisher_qos(const DDS::PublisherQos&) override { unexpected(); }
  DDS::ReturnCode_t get_default_publisher_qos(DDS::PublisherQos&) override { unexpected(); }
  DDS::ReturnCode_t set_default_subscriber_qos(const DDS::SubscriberQos&) override { unexpected(); }
  DDS::ReturnCode_t get_default_subscriber_qos(DDS::SubscriberQos&) override { unexpected(); }
  DDS::ReturnCode_t set_default_topic_qos(const DDS::TopicQos&) override { unexpected(); }
  DDS::ReturnCode_t get_default_topic_qos(DDS::TopicQos&) override { unexpected(); }
  DDS::ReturnCode_t get_current_time(DDS::Time_t&) override { unexpected(); }
  DDS::ReturnCode_t get_discovered_participants(DDS::InstanceHandleSeq&) override { unexpected(); }
  DDS::ReturnCode_t get_discovered_participant_data(DDS::ParticipantBuiltinTopicData&, DDS::InstanceHandle_t) override {
    unexpected();
  }
  DDS::ReturnCode_t get_discovered_topics(DDS::InstanceHandleSeq&) override { unexpected(); }
  DDS::ReturnCode_t get_discovered_topic_data(DDS::TopicBuiltinTopicData&, DDS::InstanceHandle_t) override {
    unexpected();
  }

protected:
  /// Registers with `real` the type that is registered with this participant under that name, if any: OpenDDS registers
  /// types per participant.
  void share_type(DDS::DomainParticipant_ptr real, const char* name) {
    const OpenDDS::DCPS::TypeSupport_var type = OpenDDS::DCPS::Registered_Data_Types->lookup(this, name);
    if (!CORBA::is_nil(type.in())) {
      type->register_type(real, name);
    }
  }
};

class FakePublisherBase : public FakeEntityBase<DDS::Publisher> {
public:
  DDS::DataWriter_ptr lookup_datawriter(const char*) override { unexpected(); }
  DDS::ReturnCode_t set_qos(const DDS::PublisherQos&) override { unexpected(); }
  DDS::ReturnCode_t get_qos(DDS::PublisherQos&) override { unexpected(); }
  DDS::ReturnCode_t set_listener(DDS::PublisherListener_ptr, DDS::StatusMask) override { unexpected(); }
  DDS::PublisherListener_ptr get_listener() override { unexpected(); }
  DDS::ReturnCode_t suspend_publications() override { unexpected(); }
  DDS::ReturnCode_t resume_publications() override { unexpected(); }
  DDS::ReturnCode_t begin_coherent_changes() override { unexpected(); }
  DDS::ReturnCode_t end_coherent_changes() override { unexpected(); }
  DDS::ReturnCode_t wait_for_acknowledgments(const DDS::Duration_t&) override { unexpected(); }
  DDS::DomainParticipant_ptr get_participant() override { unexpected(); }
  DDS::ReturnCode_t set_default_datawriter_qos(const DDS::DataWriterQos&) override { unexpected(); }
  DDS::ReturnCode_t copy_from_topic_qos(DDS::DataWriterQos&, const DDS::TopicQos&) override { unexpected(); }
};

class FakeSubscriberBase : public FakeEntityBase<DDS::Subscriber> {
public:
  DDS::DataReader_ptr lookup_datareader(const char*) override { unexpected(); }
  DDS::ReturnCode_t get_datareaders(DDS::DataReaderSeq&, DDS::SampleStateMask, DDS::ViewStateMask,
                                    DDS::InstanceStateMask) override {
    unexpected();
  }
  DDS::ReturnCode_t notify_datareaders() override { unexpected(); }
  DDS::ReturnCode_t set_qos(const DDS::SubscriberQos&) override { unexpected(); }
  DDS::ReturnCode_t get_qos(DDS::SubscriberQos&) override { unexpected(); }
  DDS::ReturnCode_t set_listener(DDS::SubscriberListener_ptr, DDS::StatusMask) override { unexpected(); }
  DDS::SubscriberListener_ptr get_listener() override { unexpected(); }
  DDS::ReturnCode_t begin_access() override { unexpected(); }
  DDS::ReturnCode_t end_access() override { unexpected(); }
  DDS::DomainParticipant_ptr get_participant() override { unexpected(); }
  DDS::ReturnCode_t set_default_datareader_qos(const DDS::DataReaderQos&) override { unexpected(); }
  DDS::ReturnCode_t copy_from_topic_qos(DDS::DataReaderQos&, const DDS::TopicQos&) override { unexpected(); }
};

/// A writer without the operations of its type. `Interface`: DDS::DataWriter or a typed one.
template <typename Interface>
class FakeUntypedWriterBase : public FakeEntityBase<Interface> {
public:
  DDS::ReturnCode_t set_qos(const DDS::DataWriterQos&) override { unexpected(); }
  DDS::ReturnCode_t get_qos(DDS::DataWriterQos&) override { unexpected(); }
  DDS::ReturnCode_t set_listener(DDS::DataWriterListener_ptr, DDS::StatusMask) override { unexpected(); }
  DDS::DataWriterListener_ptr get_listener() override { unexpected(); }
  DDS::Topic_ptr get_topic() override { unexpected(); }
  DDS::Publisher_ptr get_publisher() override { unexpected(); }
  DDS::ReturnCode_t wait_for_acknowledgments(const DDS::Duration_t&) override { unexpected(); }
  DDS::ReturnCode_t get_liveliness_lost_status(DDS::LivelinessLostStatus&) override { unexpected(); }
  DDS::ReturnCode_t get_offered_deadline_missed_status(DDS::OfferedDeadlineMissedStatus&) override { unexpected(); }
  DDS::ReturnCode_t get_offered_incompatible_qos_status(DDS::OfferedIncompatibleQosStatus&) override { unexpected(); }
  DDS::ReturnCode_t assert_liveliness() override { unexpected(); }
  DDS::ReturnCode_t get_matched_subscriptions(DDS::InstanceHandleSeq&) override { unexpected(); }
  DDS::ReturnCode_t get_matched_subscription_data(DDS::SubscriptionBuiltinTopicData&, DDS::InstanceHandle_t) override {
    unexpected();
  }
};

using FakeWriterBase = FakeUntypedWriterBase<DDS::DataWriter>;

template <typename Attribute>
class FakeTypedWriterBase : public FakeUntypedWriterBase<typename Attribute::DataWriter> {
  using Sample = typename Attribute::Sample;

public:
  DDS::InstanceHandle_t register_instance_w_timestamp(const Sample&, const DDS::Time_t&) override { unexpected(); }
  DDS::ReturnCode_t unregister_instance_w_timestamp(const Sample&, DDS::InstanceHandle_t, const DDS::Time_t&) override {
    unexpected();
  }
  DDS::ReturnCode_t write_w_timestamp(const Sample&, DDS::InstanceHandle_t, const DDS::Time_t&) override {
    unexpected();
  }
  DDS::ReturnCode_t dispose_w_timestamp(const Sample&, DDS::InstanceHandle_t, const DDS::Time_t&) override {
    unexpected();
  }
  DDS::ReturnCode_t get_key_value(Sample&, DDS::InstanceHandle_t) override { unexpected(); }
  DDS::InstanceHandle_t lookup_instance(const Sample&) override { unexpected(); }
};

/// A reader without the operations of its type.
template <typename Interface>
class FakeUntypedReaderBase : public FakeEntityBase<Interface> {
public:
  DDS::ReadCondition_ptr create_readcondition(DDS::SampleStateMask, DDS::ViewStateMask,
                                              DDS::InstanceStateMask) override {
    unexpected();
  }
  DDS::QueryCondition_ptr create_querycondition(DDS::SampleStateMask, DDS::ViewStateMask, DDS::InstanceStateMask,
                                                const char*, const DDS::StringSeq&) override {
    unexpected();
  }
  DDS::ReturnCode_t delete_readcondition(DDS::ReadCondition_ptr) override { unexpected(); }
  DDS::ReturnCode_t delete_contained_entities() override { unexpected(); }
  DDS::ReturnCode_t set_qos(const DDS::DataReaderQos&) override { unexpected(); }
  DDS::ReturnCode_t get_qos(DDS::DataReaderQos&) override { unexpected(); }
  DDS::ReturnCode_t set_listener(DDS::DataReaderListener_ptr, DDS::StatusMask) override { unexpected(); }
  DDS::DataReaderListener_ptr get_listener() override { unexpected(); }
  DDS::TopicDescription_ptr get_topicdescription() override { unexpected(); }
  DDS::Subscriber_ptr get_subscriber() override { unexpected(); }
  DDS::ReturnCode_t get_sample_rejected_status(DDS::SampleRejectedStatus&) override { unexpected(); }
  DDS::ReturnCode_t get_liveliness_changed_status(DDS::LivelinessChangedStatus&) override { unexpected(); }
  DDS::ReturnCode_t get_requested_deadline_missed_status(DDS::RequestedDeadlineMissedStatus&) override { unexpected(); }
  DDS::ReturnCode_t get_requested_incompatible_qos_status(DDS::RequestedIncompatibleQosStatus&) override {
    unexpected();
  }
  DDS::ReturnCode_t get_subscription_matched_status(DDS::SubscriptionMatchedStatus&) override { unexpected(); }
  DDS::ReturnCode_t get_sample_lost_status(DDS::SampleLostStatus&) override { unexpected(); }
  DDS::ReturnCode_t wait_for_historical_data(const DDS::Duration_t&) override { unexpected(); }
  DDS::ReturnCode_t get_matched_publications(DDS::InstanceHandleSeq&) override { unexpected(); }
  DDS::ReturnCode_t get_matched_publication_data(DDS::PublicationBuiltinTopicData&, DDS::InstanceHandle_t) override {
    unexpected();
  }
  void get_latency_stats(OpenDDS::DCPS::LatencyStatisticsSeq&) override { unexpected(); }
  void reset_latency_stats() override { unexpected(); }
  CORBA::Boolean statistics_enabled() override { unexpected(); }
  void statistics_enabled(CORBA::Boolean) override { unexpected(); }
};

template <typename Attribute>
class FakeTypedReaderBase : public FakeUntypedReaderBase<typename Attribute::DataReader> {
  using Sample = typename Attribute::Sample;
  using Samples = typename OpenDDS::DCPS::DDSTraits<Sample>::MessageSequenceType;
  using Infos = DDS::SampleInfoSeq;
  using Handle = DDS::InstanceHandle_t;
  using Condition = DDS::ReadCondition_ptr;
  using SampleStates = DDS::SampleStateMask;
  using ViewStates = DDS::ViewStateMask;
  using InstanceStates = DDS::InstanceStateMask;
  using Result = DDS::ReturnCode_t;

public:
  Result read(Samples&, Infos&, CORBA::Long, SampleStates, ViewStates, InstanceStates) override { unexpected(); }
  Result take(Samples&, Infos&, CORBA::Long, SampleStates, ViewStates, InstanceStates) override { unexpected(); }
  Result read_w_condition(Samples&, Infos&, CORBA::Long, Condition) override { unexpected(); }
  Result take_w_condition(Samples&, Infos&, CORBA::Long, Condition) override { unexpected(); }
  Result read_next_sample(Sample&, DDS::SampleInfo&) override { unexpected(); }
  Result read_instance(Samples&, Infos&, CORBA::Long, Handle, SampleStates, ViewStates, InstanceStates) override {
    unexpected();
  }
  Result take_instance(Samples&, Infos&, CORBA::Long, Handle, SampleStates, ViewStates, InstanceStates) override {
    unexpected();
  }
  Result read_instance_w_condition(Samples&, Infos&, CORBA::Long, Handle, Condition) override { unexpected(); }
  Result take_instance_w_condition(Samples&, Infos&, CORBA::Long, Handle, Condition) override { unexpected(); }
  Result read_next_instance(Samples&, Infos&, CORBA::Long, Handle, SampleStates, ViewStates, InstanceStates) override {
    unexpected();
  }
  Result take_next_instance(Samples&, Infos&, CORBA::Long, Handle, SampleStates, ViewStates, InstanceStates) override {
    unexpected();
  }
  Result read_next_instance_w_condition(Samples&, Infos&, CORBA::Long, Handle, Condition) override { unexpected(); }
  Result take_next_instance_w_condition(Samples&, Infos&, CORBA::Long, Handle, Condition) override { unexpected(); }
  Result return_loan(Samples&, Infos&) override { unexpected(); }
  Result get_key_value(Sample&, Handle) override { unexpected(); }
  Handle lookup_instance(const Sample&) override { unexpected(); }
};

}  // namespace doubles
