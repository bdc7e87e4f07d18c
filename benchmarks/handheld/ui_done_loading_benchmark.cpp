#include <chrono>
#include <thread>

#include "benchmarks/bare_engine.h"
#include "benchmarks/child.h"
#include "benchmarks/comparison.h"
#include "simulator/model/unit_model.h"

namespace {

using benchmarks::Aim;
using benchmarks::BareEngine;
using benchmarks::Child;

const char TOPIC[] = "Halcyra/local/UIDoneLoading";
const char WAITSET_TOPIC[] = "Halcyra/local/UIDoneLoadingWaitset";
const char LISTENER_TOPIC[] = "Halcyra/local/UIDoneLoadingListener";
constexpr int UI_LOADED = 12;
constexpr auto START_UP = std::chrono::milliseconds(200);
/// Pause between two messages, so that the listener's threads are asleep.
constexpr auto PAUSE = std::chrono::milliseconds(2);

/// The user interface's side: a writer and a process that listens to it.
class Listening {
public:
  Listening(BareEngine& engine, const char* topic, const char* side)
      : writer_(engine.make_writer(Varnok_QTNN_DDS_ATTR_VOID_desc, topic, false)),
        listener_("started_process", {side, topic}) {
    listener_.number();
    BareEngine::wait_for_readers(writer_, 1);
    std::this_thread::sleep_for(START_UP);
  }

  /// Nanoseconds from the message to the LED.
  double time() const {
    auto& power_supply = simulator::model::UnitModel::of_this_unit().power_supply();
    power_supply.set_led_status(0);
    std::this_thread::sleep_for(PAUSE);
    return benchmarks::time_of([&] {
      const Varnok_QTNN_DDS_ATTR_VOID message{};
      dds_write(writer_, &message);
      while (power_supply.led_status() != UI_LOADED) {
      }
    });
  }

private:
  dds_entity_t writer_;
  Child listener_;
};

BareEngine& engine() {
  static BareEngine& the_engine = *new BareEngine;
  return the_engine;
}

double through_the_library() {
  static Listening& listening = *new Listening(engine(), TOPIC, "library");
  return listening.time();
}

double through_a_bare_waitset() {
  static Listening& listening = *new Listening(engine(), WAITSET_TOPIC, "waitset");
  return listening.time();
}

double through_a_bare_listener() {
  static Listening& listening = *new Listening(engine(), LISTENER_TOPIC, "listener");
  return listening.time();
}

/// Measured with OpenDDS on the machine of docs/performance.md.
double through_opendds() {
  return 55e3;
}

const bool FAIR = benchmarks::compare({"message to LED call, against a bare waitset thread",
                                       through_the_library,
                                       through_a_bare_waitset,
                                       {Aim::Kind::RATIO_AT_MOST, 1.15},
                                       1000});

const bool BARE = benchmarks::compare({"message to LED call, against a bare listener",
                                       through_the_library,
                                       through_a_bare_listener,
                                       {Aim::Kind::RATIO_WITHOUT_AIM, 0},
                                       1000});

const bool ABSOLUTE = benchmarks::compare({"message to LED call, against OpenDDS's 55 us",
                                           through_the_library,
                                           through_opendds,
                                           {Aim::Kind::RATIO_AT_MOST, 1},
                                           1000});

}  // namespace
