#include "messaging/dds_publisher.h"

#include <engine/diagnostics.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <type_traits>

#include "tests/doubles/captured_output.h"
#include "tests/doubles/child_process.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/temporary_folder.h"
#include "tests/unit/messaging/attribute_topic.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::ChildProcess;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using doubles::TemporaryFolder;
using doubles::text_of;
using testing::ElementsAre;
using testing::IsEmpty;
using Varnok::DDS_Publisher;
using Varnok::Connection_errors::Communications_failure;
using Varnok::Connection_errors::Not_Connected;

const char TOPIC[] = "Halcyra/local/ExternalVoltage";
const std::string CONSTRUCTOR = "Varnok::DDS_Publisher<T>::DDS_Publisher(const char*) [with T = bool]";

std::string type_name() {
  const BooleanAttribute::TypeSupport_var type = new BooleanAttribute::TypeSupportImpl;
  const CORBA::String_var name = type->get_type_name();
  return name.in();
}

class DdsPublisherTest : public testing::Test {
protected:
  DdsPublisherTest() {
    doubles::reset_framework();
    calls().clear();
  }

  /// The text of the constructor's exception; "" if it throws nothing.
  static std::string failure() {
    try {
      const DDS_Publisher<bool> publisher(TOPIC);
    } catch (const Not_Connected& error) {
      return error.what();
    }
    return "";
  }
  void expect_printed_and_thrown(const std::string& text) {
    EXPECT_EQ(failure(), text);
    EXPECT_EQ(output_.err(), text + "\n");
    EXPECT_EQ(output_.out(), "");
  }

  FakeDds dds_;
  ParticipantInUse in_use_{dds_.participant()};
  CapturedOutput output_;
};

TEST_F(DdsPublisherTest, ConstructionMakesPublisherTopicAndWriterInOrder) {
  const DDS_Publisher<bool> publisher(TOPIC);
  EXPECT_THAT(calls().all(),
              ElementsAre("dds create_publisher", std::string("dds create_topic ") + TOPIC + " " + type_name(),
                          "dds get_default_datawriter_qos", "dds create_datawriter"));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(DdsPublisherTest, AllIsMadeWithoutListenersAndWithAllStatuses) {
  const DDS_Publisher<bool> publisher(TOPIC);
  EXPECT_THAT(dds_.masks(), ElementsAre(0xFFFFFFFFU));
  EXPECT_FALSE(dds_.listeners_given());
}

TEST_F(DdsPublisherTest, OnlyTheDurabilityDiffersFromTheDefaultQos) {
  const DDS_Publisher<bool> publisher(TOPIC);
  const DDS::Publisher_var plain =
      doubles::real_participant()->create_publisher(PUBLISHER_QOS_DEFAULT, DDS::PublisherListener::_nil(), 0);
  DDS::DataWriterQos defaults = TheServiceParticipant->initial_DataWriterQos();
  plain->get_default_datawriter_qos(defaults);
  doubles::real_participant()->delete_publisher(plain.in());
  const DDS::DataWriterQos qos = dds_.writer_qos();
  EXPECT_EQ(qos.durability.kind, DDS::TRANSIENT_LOCAL_DURABILITY_QOS);
  EXPECT_EQ(qos.history.kind, defaults.history.kind);
  EXPECT_EQ(qos.history.depth, defaults.history.depth);
  EXPECT_EQ(qos.reliability.kind, defaults.reliability.kind);
  EXPECT_EQ(qos.reliability.max_blocking_time.sec, defaults.reliability.max_blocking_time.sec);
  EXPECT_EQ(qos.reliability.max_blocking_time.nanosec, defaults.reliability.max_blocking_time.nanosec);
  EXPECT_EQ(qos.lifespan.duration.sec, defaults.lifespan.duration.sec);
  EXPECT_EQ(qos.liveliness.kind, defaults.liveliness.kind);
  EXPECT_EQ(qos.ownership.kind, defaults.ownership.kind);
  EXPECT_EQ(qos.resource_limits.max_samples, defaults.resource_limits.max_samples);
  EXPECT_EQ(qos.writer_data_lifecycle.autodispose_unregistered_instances,
            defaults.writer_data_lifecycle.autodispose_unregistered_instances);
}

TEST_F(DdsPublisherTest, APublisherThatIsRefusedThrowsAndPrintsNothing) {
  dds_.refuses("create_publisher");
  EXPECT_EQ(failure(), "DDS_Publisher::Init err: Participant->create_publisher");
  EXPECT_EQ(output_.out() + output_.err(), "");
  EXPECT_THAT(calls().all(), ElementsAre("dds create_publisher"));
}

TEST_F(DdsPublisherTest, AProcessWithoutParticipantHasNoPublisherEither) {
  const ParticipantInUse nobody(DDS::DomainParticipant::_nil());
  EXPECT_EQ(failure(), "DDS_Publisher::Init err: Participant->create_publisher");
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(DdsPublisherTest, ATypeThatIsRefusedIsPrintedAndThrown) {
  const doubles::TypeNameTaken<BooleanAttribute, VoidAttribute> taken;
  const ParticipantInUse in_use(taken.participant());
  expect_printed_and_thrown(CONSTRUCTOR + " err: Osts->register_type");
  EXPECT_THAT(calls().all(), ElementsAre("dds create_publisher"));
}

TEST_F(DdsPublisherTest, ATopicThatIsRefusedIsPrintedAndThrownWithItsNameBeforeItsType) {
  dds_.refuses("create_topic");
  expect_printed_and_thrown(CONSTRUCTOR + ":  Participant->create_topic [" + TOPIC + "] [" + type_name() + "]");
}

TEST_F(DdsPublisherTest, AWriterThatIsRefusedIsPrintedAndThrown) {
  dds_.refuses("create_datawriter");
  expect_printed_and_thrown(CONSTRUCTOR + " err: Publisher->create_datawriter");
}

TEST_F(DdsPublisherTest, AWriterOfNoTypeIsPrintedAndThrown) {
  dds_.refuses("narrow_writer");
  expect_printed_and_thrown(CONSTRUCTOR + " err:  pub_obj.writer_i_narrow_func");
}

TEST_F(DdsPublisherTest, DefaultQosThatCannotBeFetchedIsOneLineAndThePublisherWorks) {
  dds_.refuses("get_default_datawriter_qos");
  DDS_Publisher<bool> publisher(TOPIC);
  EXPECT_EQ(output_.out(), "DDS_Publisher:: ERROR: create_datawriter failed\n");
  EXPECT_EQ(output_.err(), "");
  EXPECT_EQ(dds_.writer_qos().durability.kind, DDS::TRANSIENT_LOCAL_DURABILITY_QOS);
  publisher.sendData(true);
  AttributeReader<BooleanAttribute> reader(TOPIC);
  const auto samples = reader.take(1);
  ASSERT_EQ(samples.size(), 1U);
  EXPECT_TRUE(samples[0].value);
}

TEST_F(DdsPublisherTest, SendDataRegistersAndWritesOneSampleWhoseOtherFieldsAreZero) {
  DDS_Publisher<bool> publisher(TOPIC);
  calls().clear();
  publisher.sendData(true);
  EXPECT_THAT(calls().all(), ElementsAre("dds register_instance true 0 0 0", "dds write true 0 0 0 0"));
  calls().clear();
  publisher.sendData(false);
  EXPECT_THAT(calls().all(), ElementsAre("dds register_instance false 0 0 0", "dds write false 0 0 0 0"));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(DdsPublisherTest, TheSameValueTwiceIsTwoSamples) {
  AttributeReader<BooleanAttribute> reader(TOPIC);
  DDS_Publisher<bool> publisher(TOPIC);
  publisher.sendData(true);
  EXPECT_EQ(reader.take(1).size(), 1U);
  publisher.sendData(true);
  const auto second = reader.take(1);
  ASSERT_EQ(second.size(), 1U);
  EXPECT_TRUE(second[0].value);
  EXPECT_EQ(second[0].quality, 0);
  EXPECT_EQ(second[0].source, 0);
  EXPECT_EQ(second[0].timestamp, 0);
}

TEST_F(DdsPublisherTest, ARefusedWriteThrowsAndPrintsNothing) {
  DDS_Publisher<bool> publisher(TOPIC);
  dds_.refuses("write");
  try {
    publisher.sendData(true);
    ADD_FAILURE() << "nothing was thrown";
  } catch (const Communications_failure& error) {
    EXPECT_STREQ(error.what(), "void Varnok::DDS_Publisher<T>::sendData(const T&) [with T = bool] error");
  }
  EXPECT_EQ(output_.out() + output_.err(), "");
  EXPECT_EQ(calls().starting_with("dds write").size(), 1U) << "no second try";
}

TEST_F(DdsPublisherTest, ALateJoinerGetsTheLastValueOnly) {
  DDS_Publisher<bool> publisher(TOPIC);
  publisher.sendData(false);
  publisher.sendData(true);
  AttributeReader<BooleanAttribute> reader(TOPIC);
  const auto samples = reader.take(1);
  ASSERT_EQ(samples.size(), 1U);
  EXPECT_TRUE(samples[0].value);
  EXPECT_FALSE(reader.has_more());
}

TEST_F(DdsPublisherTest, ALateJoinerInAnotherProcessGetsTheLastValue) {
  DDS_Publisher<bool> publisher(TOPIC);
  publisher.sendData(false);
  publisher.sendData(true);
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const TemporaryFolder output;
  ChildProcess joiner({folder / "late_joiner", TOPIC}, {"TEST_DOMAIN=" + std::to_string(doubles::real_domain())},
                      output / "joiner");
  EXPECT_EQ(joiner.wait(), 0);
  EXPECT_EQ(doubles::without_engine_lines(text_of(output / "joiner")), "true\n");
}

TEST_F(DdsPublisherTest, DestructionRemovesWriterPublisherAndTopicInOrder) {
  {
    const DDS_Publisher<bool> publisher(TOPIC);
    calls().clear();
  }
  EXPECT_THAT(calls().all(), ElementsAre("dds delete_contained_entities of publisher", "dds delete_publisher",
                                         std::string("dds delete_topic ") + TOPIC));
}

TEST_F(DdsPublisherTest, AnotherPublisherOnTheSameTopicCanFollow) {
  { DDS_Publisher<bool>(TOPIC).sendData(true); }
  DDS_Publisher<bool> second(TOPIC);
  second.sendData(false);
  AttributeReader<BooleanAttribute> reader(TOPIC);
  const auto samples = reader.take(1);
  ASSERT_EQ(samples.size(), 1U);
  EXPECT_FALSE(samples[0].value);
}

TEST_F(DdsPublisherTest, ItsDestructorIsVirtualAndItCannotBeCopied) {
  EXPECT_TRUE(std::has_virtual_destructor_v<DDS_Publisher<bool>>);
  EXPECT_FALSE(std::is_copy_constructible_v<DDS_Publisher<bool>>);
  EXPECT_FALSE(std::is_copy_assignable_v<DDS_Publisher<bool>>);
}

}  // namespace
