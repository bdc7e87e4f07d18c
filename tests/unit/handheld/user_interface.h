#pragma once

#include <gtest/gtest.h>

#include "tests/doubles/fake_varnok.h"
#include "varnok_attributes.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/thread/thread.hpp>

/// Publishes done-loading messages as the user interface does.
class UserInterface {
public:
  UserInterface() {
    DDS::DomainParticipant_ptr const participant = doubles::real_participant();
    const Void::TypeSupport_var type = new Void::TypeSupportImpl;
    type->register_type(participant, "");
    const CORBA::String_var type_name = type->get_type_name();
    topic_ = participant->create_topic("Halcyra/local/UIDoneLoading", type_name.in(), TOPIC_QOS_DEFAULT,
                                       DDS::TopicListener::_nil(), 0);
    publisher_ = participant->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), 0);
    const DDS::DataWriter_var writer =
        publisher_->create_datawriter(topic_.in(), DATAWRITER_QOS_DEFAULT, DDS::DataWriterListener::_nil(), 0);
    writer_ = Void::DataWriter::_narrow(writer.in());
  }
  ~UserInterface() {
    DDS::DomainParticipant_ptr const participant = doubles::real_participant();
    publisher_->delete_contained_entities();
    participant->delete_publisher(publisher_.in());
    participant->delete_topic(topic_.in());
  }
  UserInterface(const UserInterface&) = delete;
  UserInterface& operator=(const UserInterface&) = delete;

  /// Waits until a reader has joined; fails the test after ten seconds.
  void wait_for_listener() {
    DDS::PublicationMatchedStatus status{};
    for (int tries = 0; tries < 10000 && status.current_count == 0; ++tries) {
      writer_->get_publication_matched_status(status);
      boost::this_thread::sleep(boost::get_system_time() + boost::posix_time::milliseconds(1));
    }
    EXPECT_GT(status.current_count, 0) << "nobody listens";
  }
  void done_loading() { EXPECT_EQ(writer_->write(Void::Sample(), DDS::HANDLE_NIL), DDS::RETCODE_OK); }

private:
  using Void = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>;

  DDS::Topic_var topic_;
  DDS::Publisher_var publisher_;
  Void::DataWriter_var writer_;
};
