#include "benchmarks/bare_engine.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

namespace benchmarks {
namespace {

constexpr dds_domainid_t UNIT_DOMAIN = 0;
constexpr dds_duration_t MAX_BLOCKING = DDS_MSECS(100);

struct QosDeleter {
  void operator()(dds_qos_t* qos) const { dds_delete_qos(qos); }
};
using Qos = std::unique_ptr<dds_qos_t, QosDeleter>;

struct ListenerDeleter {
  void operator()(dds_listener_t* listener) const { dds_delete_listener(listener); }
};

dds_return_t require(dds_return_t result, const char* what) {
  if (result < 0) {
    std::cerr << what << ": " << dds_strretcode(result) << std::endl;
    std::exit(1);
  }
  return result;
}

/// False if there was no sample.
bool take_and_call(dds_entity_t reader, const BareEngine::Listener& listener) {
  void* sample = nullptr;
  dds_sample_info_t info;
  if (dds_take(reader, &sample, &info, 1, 1) != 1) {
    return false;
  }
  dds_return_loan(reader, &sample, 1);
  if (info.valid_data) {
    listener();
  }
  return true;
}

void data_available(dds_entity_t reader, void* listener) {
  take_and_call(reader, *static_cast<BareEngine::Listener*>(listener));
}

}  // namespace

BareEngine::BareEngine()
    : participant_(require(dds_create_participant(UNIT_DOMAIN, nullptr, nullptr), "participant")) {}

BareEngine::~BareEngine() {
  dds_delete(participant_);
}

dds_entity_t BareEngine::make_topic(const dds_topic_descriptor_t& type, const std::string& topic) const {
  return require(dds_create_topic(participant_, &type, topic.c_str(), nullptr, nullptr), "topic");
}

dds_entity_t BareEngine::make_writer(const dds_topic_descriptor_t& type, const std::string& topic, bool durable) {
  const Qos qos(dds_create_qos());
  dds_qset_durability(qos.get(), durable ? DDS_DURABILITY_TRANSIENT_LOCAL : DDS_DURABILITY_VOLATILE);
  dds_qset_durability_service(qos.get(), 0, DDS_HISTORY_KEEP_LAST, 1, DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED,
                              DDS_LENGTH_UNLIMITED);
  dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, MAX_BLOCKING);
  dds_qset_history(qos.get(), DDS_HISTORY_KEEP_LAST, 1);
  const dds_entity_t publisher = require(dds_create_publisher(participant_, nullptr, nullptr), "publisher");
  return require(dds_create_writer(publisher, make_topic(type, topic), qos.get(), nullptr), "writer");
}

dds_entity_t BareEngine::make_reader(const dds_topic_descriptor_t& type, const std::string& topic, Listener listener,
                                     Caller caller) {
  const Qos qos(dds_create_qos());
  dds_qset_durability(qos.get(), DDS_DURABILITY_VOLATILE);
  dds_qset_reliability(qos.get(), DDS_RELIABILITY_BEST_EFFORT, 0);
  dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
  listeners_.push_back(std::make_unique<Listener>(std::move(listener)));
  const std::unique_ptr<dds_listener_t, ListenerDeleter> calls(dds_create_listener(listeners_.back().get()));
  if (caller == Caller::ENGINE) {
    dds_lset_data_available(calls.get(), &data_available);
  }
  const dds_entity_t subscriber = require(dds_create_subscriber(participant_, nullptr, nullptr), "subscriber");
  const dds_entity_t reader =
      require(dds_create_reader(subscriber, make_topic(type, topic), qos.get(), calls.get()), "reader");
  if (caller == Caller::WAITSET) {
    start_thread(reader, *listeners_.back());
  }
  return reader;
}

void BareEngine::start_thread(dds_entity_t reader, Listener& listener) const {
  const dds_entity_t waitset = require(dds_create_waitset(participant_), "waitset");
  require(dds_set_status_mask(reader, DDS_DATA_AVAILABLE_STATUS), "status mask");
  require(dds_waitset_attach(waitset, reader, 0), "attachment");
  std::thread([waitset, reader, &listener] {
    while (dds_waitset_wait(waitset, nullptr, 0, DDS_INFINITY) >= 0) {
      while (take_and_call(reader, listener)) {
      }
    }
  }).detach();
}

void BareEngine::wait_for_readers(dds_entity_t writer, unsigned readers) {
  dds_publication_matched_status_t status{};
  for (;;) {
    require(dds_get_publication_matched_status(writer, &status), "matched status");
    if (status.current_count >= readers) {
      return;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace benchmarks
