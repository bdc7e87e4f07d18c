#include "dcps/src/qos.h"

#include <dds/DCPS/Service_Participant.h>

namespace dcps {

namespace {

dds_duration_t to_cyclone(const DDS::Duration_t& duration) {
  if (duration.sec == DDS::DURATION_INFINITE_SEC && duration.nanosec == DDS::DURATION_INFINITE_NSEC) {
    return DDS_INFINITY;
  }
  return DDS_SECS(duration.sec) + duration.nanosec;
}

template <typename Qos>
CycloneQos shared_to_cyclone(const Qos& qos) {
  CycloneQos cyclone(dds_create_qos());
  dds_qos_t* to = cyclone.get();
  dds_qset_durability(to, static_cast<dds_durability_kind_t>(qos.durability.kind));
  dds_qset_deadline(to, to_cyclone(qos.deadline.period));
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

CycloneQos to_cyclone(const DDS::DataWriterQos& qos) {
  CycloneQos cyclone = shared_to_cyclone(qos);
  // Late readers receive what the durability service keeps; with OpenDDS, what the writer's history does.
  dds_qset_durability_service(cyclone.get(), 0, static_cast<dds_history_kind_t>(qos.history.kind), qos.history.depth,
                              qos.resource_limits.max_samples, qos.resource_limits.max_instances,
                              qos.resource_limits.max_samples_per_instance);
  dds_qset_lifespan(cyclone.get(), to_cyclone(qos.lifespan.duration));
  dds_qset_writer_data_lifecycle(cyclone.get(), qos.writer_data_lifecycle.autodispose_unregistered_instances);
  return cyclone;
}

CycloneQos to_cyclone(const DDS::DataReaderQos& qos) {
  CycloneQos cyclone = shared_to_cyclone(qos);
  dds_qset_time_based_filter(cyclone.get(), to_cyclone(qos.time_based_filter.minimum_separation));
  return cyclone;
}

}  // namespace dcps

namespace OpenDDS::DCPS {

namespace {

constexpr DDS::Duration_t INFINITE{DDS::DURATION_INFINITE_SEC, DDS::DURATION_INFINITE_NSEC};
constexpr DDS::Duration_t ZERO{DDS::DURATION_ZERO_SEC, DDS::DURATION_ZERO_NSEC};

/// With the defaults of the policies that writers and readers share.
template <typename Qos>
Qos initial_qos() {
  Qos qos{};
  qos.durability = {DDS::VOLATILE_DURABILITY_QOS};
  qos.deadline = {INFINITE};
  qos.liveliness = {DDS::AUTOMATIC_LIVELINESS_QOS, INFINITE};
  qos.reliability = {DDS::BEST_EFFORT_RELIABILITY_QOS, INFINITE};
  qos.destination_order = {DDS::BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS};
  qos.history = {DDS::KEEP_LAST_HISTORY_QOS, 1};
  qos.resource_limits = {DDS::LENGTH_UNLIMITED, DDS::LENGTH_UNLIMITED, DDS::LENGTH_UNLIMITED};
  qos.ownership = {DDS::SHARED_OWNERSHIP_QOS};
  return qos;
}

}  // namespace

DDS::DataWriterQos Service_Participant::initial_DataWriterQos() const {
  auto qos = initial_qos<DDS::DataWriterQos>();
  qos.reliability = {DDS::RELIABLE_RELIABILITY_QOS, {0, 100000000}};
  qos.lifespan = {INFINITE};
  qos.writer_data_lifecycle = {true};
  return qos;
}

DDS::DataReaderQos Service_Participant::initial_DataReaderQos() const {
  auto qos = initial_qos<DDS::DataReaderQos>();
  qos.time_based_filter = {ZERO};
  return qos;
}

}  // namespace OpenDDS::DCPS
