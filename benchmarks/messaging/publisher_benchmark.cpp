#include <chrono>
#include <thread>

#include "benchmarks/bare_engine.h"
#include "benchmarks/child.h"
#include "benchmarks/comparison.h"
#include "messaging/dds_publisher.h"

namespace {

using benchmarks::Aim;
using benchmarks::BareEngine;
using benchmarks::Child;

const char TOPIC[] = "Halcyra/local/ExternalVoltage";
const char BARE_TOPIC[] = "Halcyra/local/ExternalVoltageBare";
constexpr int WRITES = 500;
constexpr auto SETTLING_TIME = std::chrono::milliseconds(200);

Varnok::DDS_Publisher<bool>& publisher() {
  static auto& the_publisher = *new Varnok::DDS_Publisher<bool>(TOPIC);
  return the_publisher;
}

dds_entity_t bare_writer() {
  static BareEngine& engine = *new BareEngine;
  static const dds_entity_t writer = engine.make_writer(Varnok_QTNN_DDS_ATTR_BOOLEAN_desc, BARE_TOPIC, true);
  return writer;
}

double send_data() {
  Varnok::DDS_Publisher<bool>& sender = publisher();
  bool value = false;
  return benchmarks::time_of_each(WRITES, [&] { sender.sendData(value = !value); });
}

double bare_write() {
  const dds_entity_t writer = bare_writer();
  Varnok_QTNN_DDS_ATTR_BOOLEAN sample{};
  return benchmarks::time_of_each(WRITES, [&] {
    sample.value = !sample.value;
    dds_write(writer, &sample);
  });
}

/// Gives each writer a reader; all readers are in one other process.
void give_readers() {
  static Child& readers = *new Child("reading_process", {TOPIC, BARE_TOPIC});
  static const double count = readers.number();
  static const bool settled = (std::this_thread::sleep_for(SETTLING_TIME), count > 0);
  static_cast<void>(settled);
}

double with_readers(double (*measure)()) {
  publisher();
  bare_writer();
  give_readers();
  return measure();
}

const bool ALONE = benchmarks::compare(
    {"sendData without readers, against a bare write", send_data, bare_write, {Aim::Kind::RATE_AT_LEAST, 0.9}, 1000});

const bool READ = benchmarks::compare({"sendData to a reader, against a bare write",
                                       [] { return with_readers(send_data); },
                                       [] { return with_readers(bare_write); },
                                       {Aim::Kind::RATE_AT_LEAST, 0.9},
                                       300});

}  // namespace
