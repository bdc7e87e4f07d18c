// Another process of the unit on its DDS topics.
//
//   dds_peer orders   publishes done-loading messages on command: reads "write", "dispose", "unregister" or "leave"
//                     from the FIFO /run/unit/peer, one per line, and writes "done" after each. Writes "joined" once
//                     its messages reach a hardware object.
//   dds_peer flood    publishes done-loading messages without end
//   dds_peer listen   writes each published external voltage, 0 or 1, one per line, without end

#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>

#include "simulator/model/unit_model.h"
#include "varnok_attributes.h"
#include "varnok_dds.h"

namespace {

using namespace std::chrono_literals;
using Done = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>;
using Voltage = Varnok::DDS_Attribute<bool>;
using simulator::model::UnitModel;

constexpr int USER_INTERFACE_LOADED = 12;

/// Common base of both peers: the process's participant, and topics on it.
class Peer : Varnok::DDS_BaseObj {
protected:
  DDS::DomainParticipant_ptr participant() const { return DdsBase().participant; }

  DDS::Topic_var topic(const char* name, DDS::TypeSupport_ptr type) const {
    const CORBA::String_var type_name = type->get_type_name();
    type->register_type(participant(), "");
    return participant()->create_topic(name, type_name.in(), TOPIC_QOS_DEFAULT, DDS::TopicListener::_nil(),
                                       Varnok::ALL_STATUSES);
  }
};

class DoneLoading : Peer {
public:
  /// Unregistering does not dispose the instance; "dispose" does.
  DoneLoading() {
    topic_ = topic("Halcyra/local/UIDoneLoading", type_.in());
    publisher_ =
        participant()->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), Varnok::ALL_STATUSES);
    DDS::DataWriterQos qos;
    publisher_->get_default_datawriter_qos(qos);
    qos.writer_data_lifecycle.autodispose_unregistered_instances = false;
    untyped_ = publisher_->create_datawriter(topic_.in(), qos, DDS::DataWriterListener::_nil(), Varnok::ALL_STATUSES);
    writer_ = Done::DataWriter::_narrow(untyped_.in());
  }

  void write() { writer_->write(Done::Sample{}, DDS::HANDLE_NIL); }
  void dispose() { writer_->dispose(Done::Sample{}, DDS::HANDLE_NIL); }
  void unregister() { writer_->unregister_instance(Done::Sample{}, DDS::HANDLE_NIL); }
  void leave() {
    publisher_->delete_contained_entities();
    participant()->delete_publisher(publisher_.in());
  }

private:
  Done::TypeSupport_var type_ = new Done::TypeSupportImpl;
  DDS::Topic_var topic_;
  DDS::Publisher_var publisher_;
  DDS::DataWriter_var untyped_;
  Done::DataWriter_var writer_;
};

void say(const std::string& line) {
  std::cout << line << std::endl;
}

/// Publishes until a message has arrived.
void join(DoneLoading& done) {
  const auto& controller = UnitModel::of_this_unit().power_supply();
  while (controller.led_status() != USER_INTERFACE_LOADED) {
    done.write();
    for (int waits = 0; waits < 100 && controller.led_status() != USER_INTERFACE_LOADED; ++waits) {
      std::this_thread::sleep_for(5ms);
    }
  }
  say("joined");
}

void follow_orders() {
  mkfifo("/run/unit/peer", 0666);
  DoneLoading done;
  join(done);
  std::fstream orders("/run/unit/peer");
  for (std::string order; std::getline(orders, order);) {
    if (order == "write") {
      done.write();
    } else if (order == "dispose") {
      done.dispose();
    } else if (order == "unregister") {
      done.unregister();
    } else if (order == "leave") {
      done.leave();
    }
    say("done");
  }
}

void flood() {
  DoneLoading done;
  for (bool said = false;; said = true) {
    done.write();
    if (!said) {
      say("flooding");
    }
    std::this_thread::sleep_for(200us);
  }
}

class ExternalVoltage : Peer {
public:
  ExternalVoltage() {
    topic_ = topic("Halcyra/local/ExternalVoltage", type_.in());
    subscriber_ =
        participant()->create_subscriber(SUBSCRIBER_QOS_DEFAULT, DDS::SubscriberListener::_nil(), Varnok::ALL_STATUSES);
    DDS::DataReaderQos qos;
    subscriber_->get_default_datareader_qos(qos);
    qos.reliability.kind = DDS::RELIABLE_RELIABILITY_QOS;
    qos.durability.kind = DDS::TRANSIENT_LOCAL_DURABILITY_QOS;
    qos.history.kind = DDS::KEEP_ALL_HISTORY_QOS;
    untyped_ = subscriber_->create_datareader(topic_.in(), qos, DDS::DataReaderListener::_nil(), Varnok::ALL_STATUSES);
    reader_ = Voltage::DataReader::_narrow(untyped_.in());
  }

  [[noreturn]] void listen() {
    say("listening");
    for (;;) {
      Voltage::Sample sample;
      DDS::SampleInfo info;
      if (reader_->take_next_sample(sample, info) != DDS::RETCODE_OK) {
        std::this_thread::sleep_for(2ms);
      } else if (info.valid_data) {
        say(describe(sample));
      }
    }
  }

private:
  /// The value, and the sample's other fields if they are not zero.
  static std::string describe(const Voltage::Sample& sample) {
    const std::string value = sample.value ? "1" : "0";
    const bool plain = sample.quality == 0 && sample.source == 0 && sample.timestamp == 0;
    return plain ? value : value + " with a header";
  }

  Voltage::TypeSupport_var type_ = new Voltage::TypeSupportImpl;
  DDS::Topic_var topic_;
  DDS::Subscriber_var subscriber_;
  DDS::DataReader_var untyped_;
  Voltage::DataReader_var reader_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::string task = argc > 1 ? argv[1] : "";
  if (task == "orders") {
    follow_orders();
  } else if (task == "flood") {
    flood();
  } else if (task == "listen") {
    ExternalVoltage().listen();
  }
  return 2;
}
