// dcps_peer <domain> <topic> [keep-all | no-autodispose | errors] writes on the topic as commanded by the lines on its
// standard input, and answers each with one line. The writer is transient-local; it keeps its last sample, or all with
// keep-all; it disposes its instance when it ends, unless no-autodispose is given. The topic "<topic>/back" is read by
// a listener that throws. "errors": standard error is written to standard output.
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace {

using namespace Varnok::QTNN_DDS;

std::atomic<int> calls{0};

/// Throws in every call.
class ThrowingListener : public OpenDDS::DCPS::LocalObject<DDS::DataReaderListener> {
public:
  void on_requested_deadline_missed(DDS::DataReader_ptr, const DDS::RequestedDeadlineMissedStatus&) override {}
  void on_requested_incompatible_qos(DDS::DataReader_ptr, const DDS::RequestedIncompatibleQosStatus&) override {}
  void on_sample_rejected(DDS::DataReader_ptr, const DDS::SampleRejectedStatus&) override {}
  void on_liveliness_changed(DDS::DataReader_ptr, const DDS::LivelinessChangedStatus&) override {}
  void on_data_available(DDS::DataReader_ptr) override {
    ++calls;
    throw std::runtime_error("thrown by the listener");
  }
  void on_subscription_matched(DDS::DataReader_ptr, const DDS::SubscriptionMatchedStatus&) override {}
  void on_sample_lost(DDS::DataReader_ptr, const DDS::SampleLostStatus&) override {}
};

struct Peer {
  DDS::DomainParticipantFactory_var factory = TheParticipantFactory;
  DDS::DomainParticipant_var participant;
  DDS::Publisher_var publisher;
  DDS::Subscriber_var subscriber;
  ATTR_BOOLEANDataWriter_var writer;
  ATTR_BOOLEANDataReader_var reader;
  ATTR_BOOLEAN sample{};
};

std::unique_ptr<Peer> make_peer(DDS::DomainId_t domain, const std::string& topic_name, const std::string& option) {
  auto peer = std::make_unique<Peer>();
  peer->participant = peer->factory->create_participant(domain, PARTICIPANT_QOS_DEFAULT, nullptr, 0);
  if (CORBA::is_nil(peer->participant)) {
    throw std::runtime_error("no participant");
  }
  const ATTR_BOOLEANTypeSupport_var type = new ATTR_BOOLEANTypeSupportImpl;
  type->register_type(peer->participant, "");
  const CORBA::String_var type_name = type->get_type_name();
  const DDS::Topic_var topic =
      peer->participant->create_topic(topic_name.c_str(), type_name, TOPIC_QOS_DEFAULT, nullptr, 0);
  const DDS::Topic_var back =
      peer->participant->create_topic((topic_name + "/back").c_str(), type_name, TOPIC_QOS_DEFAULT, nullptr, 0);
  peer->publisher = peer->participant->create_publisher(PUBLISHER_QOS_DEFAULT, nullptr, 0);
  peer->subscriber = peer->participant->create_subscriber(SUBSCRIBER_QOS_DEFAULT, nullptr, 0);
  DDS::DataWriterQos qos;
  peer->publisher->get_default_datawriter_qos(qos);
  qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
  if (option == "keep-all") {
    qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
  }
  qos.writer_data_lifecycle.autodispose_unregistered_instances = option != "no-autodispose";
  const DDS::DataWriter_var writer = peer->publisher->create_datawriter(topic, qos, nullptr, 0);
  peer->writer = ATTR_BOOLEANDataWriter::_narrow(writer);
  const DDS::DataReaderListener_var listener = new ThrowingListener;
  DDS::DataReaderQos reader_qos;
  peer->subscriber->get_default_datareader_qos(reader_qos);
  reader_qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
  reader_qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
  const DDS::DataReader_var reader =
      peer->subscriber->create_datareader(back, reader_qos, listener, DDS::DATA_AVAILABLE_STATUS);
  peer->reader = ATTR_BOOLEANDataReader::_narrow(reader);
  return peer;
}

/// The threads that call listeners.
int listener_threads() {
  int count = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::string name;
    std::ifstream(thread.path() / "comm") >> name;
    count += name == "dcps.listener" ? 1 : 0;
  }
  return count;
}

/// Returns once the sample with that number has been taken from the topic that is read.
void take(Peer& peer, int number) {
  ATTR_BOOLEAN sample{};
  DDS::SampleInfo info{};
  while (peer.reader->take_next_sample(sample, info) != DDS::RETCODE_OK || sample.quality != number) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

std::string obey(Peer& peer, const std::string& command, int number) {
  if (command == "write") {
    peer.sample.quality = number;
    return std::to_string(peer.writer->write(peer.sample, DDS::HANDLE_NIL));
  }
  if (command == "write-many") {
    for (int i = 1; i <= number; ++i) {
      peer.sample.quality = i;
      peer.writer->write(peer.sample, DDS::HANDLE_NIL);
    }
    return "0";
  }
  if (command == "dispose") {
    return std::to_string(peer.writer->dispose(peer.sample, DDS::HANDLE_NIL));
  }
  if (command == "unregister") {
    return std::to_string(peer.writer->unregister_instance(peer.sample, DDS::HANDLE_NIL));
  }
  if (command == "take") {
    take(peer, number);
    return "0";
  }
  if (command == "listener-threads") {
    return std::to_string(listener_threads());
  }
  if (command == "calls") {
    return std::to_string(calls);
  }
  if (command == "exit") {
    std::exit(number);
  }
  if (command == "leave") {
    peer.participant->delete_contained_entities();
    peer.factory->delete_participant(peer.participant);
    std::exit(number);
  }
  return "unknown command";
}

}  // namespace

int main(int argc, char* argv[]) {
  const rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  if (argc > 3 && std::string(argv[3]) == "errors") {
    dup2(STDOUT_FILENO, STDERR_FILENO);
  }
  // Kept until the process ends: "exit" exits with everything in use.
  static const std::unique_ptr<Peer> peer = make_peer(std::atoi(argv[1]), argv[2], argc > 3 ? argv[3] : "");
  std::cout << "ready" << std::endl;
  std::string line;
  while (std::getline(std::cin, line)) {
    std::istringstream words(line);
    std::string command;
    int number = 0;
    words >> command >> number;
    std::cout << obey(*peer, command, number) << std::endl;
  }
  return 0;
}
