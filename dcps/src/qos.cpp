#include "dcps/src/qos.h"

#include <cstring>
#include <type_traits>

#include <dds/DCPS/Marked_Default_Qos.h>

#include "dcps/src/engine.h"

namespace dcps {

namespace {

constexpr int MARK = 999;

constexpr DDS::Duration_t INFINITE{DDS::DURATION_INFINITE_SEC, DDS::DURATION_INFINITE_NSEC};
constexpr DDS::Duration_t ZERO{DDS::DURATION_ZERO_SEC, DDS::DURATION_ZERO_NSEC};
constexpr DDS::ResourceLimitsQosPolicy UNLIMITED{DDS::LENGTH_UNLIMITED, DDS::LENGTH_UNLIMITED, DDS::LENGTH_UNLIMITED};

/// The policies that topics and writers share.
template <typename Qos>
void set_shared_by_topic_and_writer(Qos& qos) {
  qos.transport_priority = {0};
  qos.lifespan = {INFINITE};
}

/// The policies that topics, writers and readers share.
template <typename Qos>
Qos initial_shared() {
  Qos qos{};
  qos.durability = {DDS::VOLATILE_DURABILITY_QOS};
  qos.deadline = {INFINITE};
  qos.latency_budget = {ZERO};
  qos.liveliness = {DDS::AUTOMATIC_LIVELINESS_QOS, INFINITE};
  qos.reliability = {DDS::BEST_EFFORT_RELIABILITY_QOS, INFINITE};
  qos.destination_order = {DDS::BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS};
  qos.history = {DDS::KEEP_LAST_HISTORY_QOS, 1};
  qos.resource_limits = UNLIMITED;
  qos.ownership = {DDS::SHARED_OWNERSHIP_QOS};
  return qos;
}

template <typename To, typename From>
void copy_shared(To& to, const From& from) {
  to.durability = from.durability;
  to.deadline = from.deadline;
  to.latency_budget = from.latency_budget;
  to.liveliness = from.liveliness;
  to.reliability = from.reliability;
  to.destination_order = from.destination_order;
  to.history = from.history;
  to.resource_limits = from.resource_limits;
  to.ownership = from.ownership;
}

template <typename Qos>
CycloneQos shared_to_cyclone(const Qos& qos) {
  CycloneQos cyclone(dds_create_qos());
  dds_qos_t* to = cyclone.get();
  dds_qset_durability(to, static_cast<dds_durability_kind_t>(qos.durability.kind));
  dds_qset_deadline(to, to_cyclone(qos.deadline.period));
  dds_qset_latency_budget(to, to_cyclone(qos.latency_budget.duration));
  dds_qset_liveliness(to, static_cast<dds_liveliness_kind_t>(qos.liveliness.kind),
                      to_cyclone(qos.liveliness.lease_duration));
  dds_qset_reliability(to, static_cast<dds_reliability_kind_t>(qos.reliability.kind),
                       to_cyclone(qos.reliability.max_blocking_time));
  dds_qset_destination_order(to, static_cast<dds_destination_order_kind_t>(qos.destination_order.kind));
  dds_qset_history(to, static_cast<dds_history_kind_t>(qos.history.kind), qos.history.depth);
  dds_qset_resource_limits(to, qos.resource_limits.max_samples, qos.resource_limits.max_instances,
                           qos.resource_limits.max_samples_per_instance);
  dds_qset_ownership(to, static_cast<dds_ownership_kind_t>(qos.ownership.kind));
  return cyclone;
}

}  // namespace

DDS::TopicQos initial_topic_qos() {
  auto qos = initial_shared<DDS::TopicQos>();
  set_shared_by_topic_and_writer(qos);
  return qos;
}

DDS::DataWriterQos initial_writer_qos() {
  auto qos = initial_shared<DDS::DataWriterQos>();
  set_shared_by_topic_and_writer(qos);
  qos.reliability = {DDS::RELIABLE_RELIABILITY_QOS, {0, 100000000}};
  qos.ownership_strength = {0};
  qos.writer_data_lifecycle = {true};
  return qos;
}

DDS::DataReaderQos initial_reader_qos() {
  auto qos = initial_shared<DDS::DataReaderQos>();
  qos.time_based_filter = {ZERO};
  qos.reader_data_lifecycle = {INFINITE, INFINITE};
  return qos;
}

bool is_marked_default(const DDS::TopicQos& qos) {
  return qos.liveliness.kind == MARK;
}
bool is_marked_default(const DDS::DataWriterQos& qos) {
  return qos.liveliness.kind == MARK;
}
bool is_marked_default(const DDS::DataReaderQos& qos) {
  return qos.liveliness.kind == MARK;
}
bool is_marked_default(const DDS::PublisherQos& qos) {
  return qos.presentation.access_scope == MARK;
}
bool is_marked_default(const DDS::SubscriberQos& qos) {
  return qos.presentation.access_scope == MARK;
}
bool is_marked_use_topic(const DDS::DataWriterQos& qos) {
  return qos.durability.kind == MARK;
}
bool is_marked_use_topic(const DDS::DataReaderQos& qos) {
  return qos.durability.kind == MARK;
}

void copy_from_topic(DDS::DataWriterQos& qos, const DDS::TopicQos& topic) {
  copy_shared(qos, topic);
  qos.transport_priority = topic.transport_priority;
  qos.lifespan = topic.lifespan;
}

void copy_from_topic(DDS::DataReaderQos& qos, const DDS::TopicQos& topic) {
  copy_shared(qos, topic);
}

bool same(const DDS::TopicQos& one, const DDS::TopicQos& other) {
  static_assert(std::has_unique_object_representations_v<DDS::TopicQos>);
  return std::memcmp(&one, &other, sizeof one) == 0;
}

CycloneQos to_cyclone(const DDS::DataWriterQos& qos) {
  CycloneQos cyclone = shared_to_cyclone(qos);
  // Cyclone gives late joiners what its durability service holds, OpenDDS what the writer's history does.
  dds_qset_durability_service(cyclone.get(), 0, static_cast<dds_history_kind_t>(qos.history.kind), qos.history.depth,
                              qos.resource_limits.max_samples, qos.resource_limits.max_instances,
                              qos.resource_limits.max_samples_per_instance);
  dds_qset_transport_priority(cyclone.get(), qos.transport_priority.value);
  dds_qset_lifespan(cyclone.get(), to_cyclone(qos.lifespan.duration));
  dds_qset_ownership_strength(cyclone.get(), qos.ownership_strength.value);
  dds_qset_writer_data_lifecycle(cyclone.get(), qos.writer_data_lifecycle.autodispose_unregistered_instances);
  return cyclone;
}

CycloneQos to_cyclone(const DDS::DataReaderQos& qos) {
  CycloneQos cyclone = shared_to_cyclone(qos);
  dds_qset_time_based_filter(cyclone.get(), to_cyclone(qos.time_based_filter.minimum_separation));
  dds_qset_reader_data_lifecycle(cyclone.get(), to_cyclone(qos.reader_data_lifecycle.autopurge_nowriter_samples_delay),
                                 to_cyclone(qos.reader_data_lifecycle.autopurge_disposed_samples_delay));
  return cyclone;
}

}  // namespace dcps

namespace OpenDDS::DCPS {

namespace {

template <typename Qos>
Qos mark_default(Qos qos) {
  qos.liveliness.kind = static_cast<DDS::LivelinessQosPolicyKind>(dcps::MARK);
  return qos;
}

template <typename Qos>
Qos mark_use_topic(Qos qos) {
  qos.durability.kind = static_cast<DDS::DurabilityQosPolicyKind>(dcps::MARK);
  return qos;
}

constexpr auto MARKED_SCOPE = static_cast<DDS::PresentationQosPolicyAccessScopeKind>(dcps::MARK);

}  // namespace

DDS::DomainParticipantQos Marked_Default_Qos::marked_default_DomainParticipantQos() {
  return {};
}
DDS::TopicQos Marked_Default_Qos::marked_default_TopicQos() {
  return mark_default(dcps::initial_topic_qos());
}
DDS::DataWriterQos Marked_Default_Qos::marked_default_DataWriterQos() {
  return mark_default(dcps::initial_writer_qos());
}
DDS::PublisherQos Marked_Default_Qos::marked_default_PublisherQos() {
  return {{MARKED_SCOPE}};
}
DDS::DataReaderQos Marked_Default_Qos::marked_default_DataReaderQos() {
  return mark_default(dcps::initial_reader_qos());
}
DDS::SubscriberQos Marked_Default_Qos::marked_default_SubscriberQos() {
  return {{MARKED_SCOPE}};
}
DDS::DataWriterQos Marked_Default_Qos::marked_default_DataWriter_Use_TopicQos() {
  return mark_use_topic(dcps::initial_writer_qos());
}
DDS::DataReaderQos Marked_Default_Qos::marked_default_DataReader_Use_TopicQos() {
  return mark_use_topic(dcps::initial_reader_qos());
}

}  // namespace OpenDDS::DCPS
