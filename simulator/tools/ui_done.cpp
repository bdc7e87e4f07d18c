// unit-ui-done: tells the unit's hardware object that the user interface has loaded, as a user interface does. Waits up
// to five seconds for somebody who listens.

#include <chrono>
#include <cstdio>
#include <exception>
#include <thread>

#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace {

using Done = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>;

constexpr std::chrono::seconds PATIENCE{5};
constexpr std::chrono::milliseconds STEP{2};
constexpr int SENT = 0;
constexpr int NOBODY_LISTENS = 1;

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

  bool wait_for_reader() const {
    const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
    for (DDS::PublicationMatchedStatus status{}; std::chrono::steady_clock::now() < deadline;
         std::this_thread::sleep_for(STEP)) {
      if (untyped_->get_publication_matched_status(status) == DDS::RETCODE_OK && status.current_count > 0) {
        return true;
      }
    }
    return false;
  }
  void write() { writer_->write(Done::Sample{}, DDS::HANDLE_NIL); }

private:
  DDS::DomainParticipant_ptr participant() const { return DdsBase().participant; }

  Done::TypeSupport_var type_ = new Done::TypeSupportImpl;
  DDS::Topic_var topic_;
  DDS::Publisher_var publisher_;
  DDS::DataWriter_var untyped_;
  Done::DataWriter_var writer_;
};

}  // namespace

int main() {
  try {
    DoneLoading done;
    if (!done.wait_for_reader()) {
      std::fputs("unit-ui-done: nobody listens\n", stderr);
      return NOBODY_LISTENS;
    }
    done.write();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "unit-ui-done: %s\n", error.what());
    return NOBODY_LISTENS;
  }
  return SENT;
}
