#include <orb_wrapper.h>
#include <varnok_attributes.h>
#include <varnok_dds.h>
#include <varnok_events.h>
#include <varnok_locker.h>

#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {
namespace {

using simulator::model::FaultKind;
using simulator::model::Point;

/// Runs in a process of its own, which makes its participant.
class ParticipantProbe final : public Probe {
public:
  explicit ParticipantProbe(PairsUnit& unit) : unit_(unit) {}

  Outcome call(FaultKind) override {
    doubles::ChildProcess program({PARTICIPANT_PROGRAM}, unit_.variables(), unit_.file("participant"));
    return {program.wait() != 0, {}};
  }

private:
  PairsUnit& unit_;
};

using Sample = Varnok::DDS_Attribute<bool>::Sample;

/// A writer and a reader of one topic.
class WriteProbe final : public Probe, Varnok::DDS_BaseObj {
public:
  WriteProbe() {
    const DDS::DomainParticipant_ptr participant = DdsBase().participant;
    const Varnok::DDS_Attribute<bool>::TypeSupport_var type = new Varnok::DDS_Attribute<bool>::TypeSupportImpl;
    type->register_type(participant, "");
    const CORBA::String_var type_name = type->get_type_name();
    topic_ = participant->create_topic("fault_pairs", type_name.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(), 0);
    publisher_ = participant->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), 0);
    subscriber_ = participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, DDS::SubscriberListener::_nil(), 0);
    make_reader();
    const DDS::DataWriter_var writer =
        publisher_->create_datawriter(topic_.in(), DATAWRITER_QOS_DEFAULT, DDS::DataWriterListener::_nil(), 0);
    writer_ = Varnok::DDS_Attribute<bool>::DataWriter::_narrow(writer.in());
  }
  ~WriteProbe() override {
    publisher_->delete_contained_entities();
    subscriber_->delete_contained_entities();
    DdsBase().participant->delete_publisher(publisher_.in());
    DdsBase().participant->delete_subscriber(subscriber_.in());
    DdsBase().participant->delete_topic(topic_.in());
  }

  Outcome call(FaultKind) override {
    Sample sample{};
    Outcome outcome;
    outcome.failed = writer_->write(sample, DDS::HANDLE_NIL) != DDS::RETCODE_OK;
    DDS::SampleInfo info;
    while (reader_->take_next_sample(sample, info) == DDS::RETCODE_OK) {
      outcome.delivered.emplace_back("sample");
    }
    return outcome;
  }

private:
  void make_reader() {
    DDS::DataReaderQos qos = TheServiceParticipant->initial_DataReaderQos();
    qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
    qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
    const DDS::DataReader_var reader =
        subscriber_->create_datareader(topic_.in(), qos, DDS::DataReaderListener::_nil(), 0);
    reader_ = Varnok::DDS_Attribute<bool>::DataReader::_narrow(reader.in());
  }

  DDS::Topic_var topic_;
  DDS::Publisher_var publisher_;
  DDS::Subscriber_var subscriber_;
  Varnok::DDS_Attribute<bool>::DataWriter_var writer_;
  Varnok::DDS_Attribute<bool>::DataReader_var reader_;
};

class EventProbe final : public Probe {
public:
  Outcome call(FaultKind) override {
    try {
      channel_.SendEventMessage(Varnok::Event::Message());
      return {};
    } catch (const std::runtime_error&) {
      return {true, {}};
    }
  }

private:
  Varnok::EngineEventMessage_i channel_;
};

class LookupProbe final : public Probe {
public:
  Outcome call(FaultKind) override {
    std::vector<ORB_wrapper_base::ClientInfo> clients{ORB_wrapper_base::ClientInfo(services_test::GUI_MANAGER_PATH)};
    try {
      ORB_wrapper_base().LookupClient(clients);
      return {};
    } catch (const CORBA::TRANSIENT&) {
      return {true, {}};
    }
  }
};

class LockerProbe final : public Probe {
public:
  Outcome call(FaultKind) override {
    const Varnok::Locker locker;
    locker.Init_core();
    return {};
  }
};

}  // namespace

std::unique_ptr<Probe> make_framework_probe(PairsUnit& unit, Point point) {
  switch (point) {
    case Point::DDS_PARTICIPANT:
      return std::make_unique<ParticipantProbe>(unit);
    case Point::DDS_WRITE:
      return std::make_unique<WriteProbe>();
    case Point::EVENTS_SEND:
      return std::make_unique<EventProbe>();
    case Point::ORB_LOOKUP:
      return std::make_unique<LookupProbe>();
    case Point::LOCKER_TAKE:
    case Point::LOCKER_INIT_CORE:
      return std::make_unique<LockerProbe>();
    default:
      return nullptr;
  }
}

}  // namespace fault_pairs
