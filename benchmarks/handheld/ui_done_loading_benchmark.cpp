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
const char BARE_TOPIC[] = "Halcyra/local/UIDoneLoadingBare";
constexpr int UI_LOADED = 12;
constexpr auto START_UP = std::chrono::milliseconds(200);
/// Between two messages, so that the listener's threads have gone to sleep.
constexpr auto PAUSE = std::chrono::milliseconds(2);

/// The user interface's side: a writer, and a process that listens to it.
class Listening {
public:
  Listening(BareEngine& engine, const char* topic, const char* side)
      : writer_(engine.make_writer(Varnok_QTNN_DDS_ATTR_VOID_desc, topic, false)),
        listener_("started_process", {side, topic}) {
    listener_.number();
    BareEngine::wait_for_readers(writer_, 1);
    std::this_thread::sleep_for(START_UP);
  }

  /// From the message to the LED.
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

double through_a_bare_listener() {
  static Listening& listening = *new Listening(engine(), BARE_TOPIC, "bare");
  return listening.time();
}

const bool REGISTERED = benchmarks::compare({"message to LED call, against a bare listener",
                                             through_the_library,
                                             through_a_bare_listener,
                                             {Aim::Kind::RATIO_AT_MOST, 1.3},
                                             1000});

}  // namespace
