// unit-ui-done: tells the unit's hardware object that the user interface has loaded, as a user interface does. Repeats
// the message until the object has set the system LED, for up to five seconds: a message that is sent before the
// object's reader has found this writer is lost.

#include <chrono>
#include <cstdio>
#include <exception>
#include <thread>

#include "simulator/model/unit_model.h"
#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace {

using Done = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>;
using simulator::model::Point;
using simulator::model::UnitModel;

constexpr std::chrono::seconds PATIENCE{5};
constexpr std::chrono::milliseconds STEP{2};
constexpr int STEPS_PER_MESSAGE = 50;
constexpr int TAKEN = 0;
constexpr int NOT_TAKEN = 1;

class DoneLoading : Varnok::DDS_BaseObj {
public:
  DoneLoading() {
    const CORBA::String_var type_name = type_->get_type_name();
    type_->register_type(participant(), "");
    topic_ = participant()->create_topic("Halcyra/local/UIDoneLoading", type_name.in(), TOPIC_QOS_DEFAULT,
                                         DDS::TopicListener::_nil(), Varnok::ALL_STATUSES);
    publisher_ =
        participant()->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), Varnok::ALL_STATUSES);
    untyped_ = publisher_->create_datawriter(topic_.in(), DATAWRITER_QOS_DEFAULT, DDS::DataWriterListener::_nil(),
                                             Varnok::ALL_STATUSES);
    writer_ = Done::DataWriter::_narrow(untyped_.in());
  }
  /// Deleting the writer delivers what it has written.
  ~DoneLoading() {
    publisher_->delete_contained_entities();
    participant()->delete_publisher(publisher_.in());
  }
  DoneLoading(const DoneLoading&) = delete;
  DoneLoading& operator=(const DoneLoading&) = delete;

  void write() { writer_->write(Done::Sample{}, DDS::HANDLE_NIL); }

private:
  DDS::DomainParticipant_ptr participant() const { return DdsBase().participant; }

  Done::TypeSupport_var type_ = new Done::TypeSupportImpl;
  DDS::Topic_var topic_;
  DDS::Publisher_var publisher_;
  DDS::DataWriter_var untyped_;
  Done::DataWriter_var writer_;
};

/// Counts the settings of the system LED while it lives.
class LedCount {
public:
  explicit LedCount(UnitModel& unit) : unit_(unit), counted_before_(unit.counts_calls()) {
    unit_.count_calls(true);
    first_ = calls();
  }
  ~LedCount() { unit_.count_calls(counted_before_); }
  LedCount(const LedCount&) = delete;
  LedCount& operator=(const LedCount&) = delete;

  bool grown() const { return calls() != first_; }

private:
  std::uint64_t calls() const { return unit_.faults().calls(Point::SET_SYSTEM_LED_STATUS); }

  UnitModel& unit_;
  bool counted_before_;
  std::uint64_t first_ = 0;
};

/// Sends the message until it has been taken; false on timeout.
bool tell(DoneLoading& done, const LedCount& led) {
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (std::chrono::steady_clock::now() < deadline) {
    done.write();
    for (int step = 0; step < STEPS_PER_MESSAGE; ++step) {
      if (led.grown()) {
        return true;
      }
      std::this_thread::sleep_for(STEP);
    }
  }
  return false;
}

}  // namespace

int main() {
  try {
    const LedCount led(UnitModel::of_this_unit());
    DoneLoading done;
    if (tell(done, led)) {
      return TAKEN;
    }
    std::fputs("unit-ui-done: no hardware object has taken the message\n", stderr);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "unit-ui-done: %s\n", error.what());
  }
  return NOT_TAKEN;
}
