#include <gmock/gmock.h>

#include <csignal>
#include <functional>

#include "messaging/dds_subscriber.h"
#include "tests/doubles/captured_output.h"
#include "tests/doubles/fake_dds.h"
#include "tests/doubles/fake_varnok.h"

// A failing start-up prints and throws the text, and the exception terminates the process.

namespace {

using doubles::CapturedOutput;
using doubles::FakeDds;
using doubles::ParticipantInUse;
using testing::Eq;
using Varnok::DDS_Subscriber;
using Varnok::DDS_VoidMessage;
using Void = Varnok::DDS_Attribute<DDS_VoidMessage>;
using Boolean = Varnok::DDS_Attribute<bool>;

const char TOPIC[] = "Halcyra/local/UIDoneLoading";
const std::string SIGNATURE =
    "void Varnok::DDS_SubscriberBase<T, U>::InitSubBase(Varnok::DDS_Subscriber<T>*, long int, long unsigned int, "
    "DDS::DurabilityQosPolicyKind) [with T = Varnok::DDS_VoidMessage, F = void(const char*)]";

std::string type_name() {
  const Void::TypeSupport_var type = new Void::TypeSupportImpl;
  const CORBA::String_var name = type->get_type_name();
  return name.in();
}

/// The standard error of a process terminated by an exception with that text.
std::string last_words(const std::string& text) {
  return text +
         "\nterminate called after throwing an instance of 'Varnok::Connection_errors::Not_Connected'\n  what():  " +
         text + "\n";
}

/// A failing step of the start-up, and its message.
struct Refusal {
  const char* name;
  const char* step;
  std::function<std::string()> text;
};

void PrintTo(const Refusal& refusal, std::ostream* stream) {
  *stream << refusal.step << " fails";
}

/// The base class alone, so that start-up can run on the test's own thread. Never destroyed: its destructor would wait
/// for a start-up that never ends.
class OpenBase : public Varnok::DDS_SubscriberBase<DDS_VoidMessage, void(const char*)> {
public:
  OpenBase() : DDS_SubscriberBase(TOPIC, [](const char*) {}) {}

  static OpenBase& made() {
    static auto& kept = *new std::vector<OpenBase*>;
    kept.push_back(new OpenBase);
    return *kept.back();
  }
  std::string failure() {
    try {
      InitSubBase(nullptr, 0, 0, DDS::VOLATILE_DURABILITY_QOS);
    } catch (const Varnok::Connection_errors::Not_Connected& error) {
      return error.what();
    }
    return "";
  }
};

using VoidNameTaken = doubles::TypeNameTaken<Void, Boolean>;

class DdsSubscriberRefusalTest : public testing::TestWithParam<Refusal> {};

TEST_P(DdsSubscriberRefusalTest, IsPrintedAndThrown) {
  FakeDds dds;
  dds.refuses(GetParam().step);
  const ParticipantInUse in_use(dds.participant());
  const CapturedOutput output;
  EXPECT_EQ(OpenBase::made().failure(), GetParam().text());
  EXPECT_EQ(output.err(), GetParam().text() + "\n");
  EXPECT_EQ(output.out(), "");
}

TEST_P(DdsSubscriberRefusalTest, EndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        FakeDds dds;
        dds.refuses(GetParam().step);
        const ParticipantInUse in_use(dds.participant());
        const DDS_Subscriber<DDS_VoidMessage> subscriber(TOPIC, [](const char*) {});
        subscriber.waitForInitDone();
      },
      testing::KilledBySignal(SIGABRT), Eq(last_words(GetParam().text())));
}

INSTANTIATE_TEST_SUITE_P(
    Steps, DdsSubscriberRefusalTest,
    testing::Values(
        Refusal{"Subscriber", "create_subscriber", [] { return SIGNATURE + " err: create_subscriber"; }},
        Refusal{"Topic", "create_topic",
                [] { return SIGNATURE + " err: Participant->create_topic [" + type_name() + "] [" + TOPIC + "]"; }},
        Refusal{"Reader", "create_datareader", [] { return SIGNATURE + " err: Subscriber->create_datareader"; }}),
    [](const auto& refusal) { return refusal.param.name; });

const std::string NO_PARTICIPANT = SIGNATURE + " err: Participant NULL";
const std::string NO_TYPE = SIGNATURE + " err: Osts->register_type";

TEST(DdsSubscriberFailureTest, AProcessWithoutParticipantIsPrintedAndThrown) {
  const ParticipantInUse nobody(DDS::DomainParticipant::_nil());
  const CapturedOutput output;
  EXPECT_EQ(OpenBase::made().failure(), NO_PARTICIPANT);
  EXPECT_EQ(output.err(), NO_PARTICIPANT + "\n");
  EXPECT_EQ(output.out(), "");
}

TEST(DdsSubscriberFailureTest, ATypeThatIsRefusedIsPrintedAndThrown) {
  const VoidNameTaken taken;
  const ParticipantInUse in_use(taken.participant());
  const CapturedOutput output;
  EXPECT_EQ(OpenBase::made().failure(), NO_TYPE);
  EXPECT_EQ(output.err(), NO_TYPE + "\n");
  EXPECT_EQ(output.out(), "");
}

TEST(DdsSubscriberFailureDeathTest, AProcessWithoutParticipantEnds) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        const ParticipantInUse nobody(DDS::DomainParticipant::_nil());
        const DDS_Subscriber<DDS_VoidMessage> subscriber(TOPIC, [](const char*) {});
        subscriber.waitForInitDone();
      },
      testing::KilledBySignal(SIGABRT), Eq(last_words(NO_PARTICIPANT)));
}

TEST(DdsSubscriberFailureDeathTest, ATypeThatIsRefusedEndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        const VoidNameTaken taken;
        const ParticipantInUse in_use(taken.participant());
        const DDS_Subscriber<DDS_VoidMessage> subscriber(TOPIC, [](const char*) {});
        subscriber.waitForInitDone();
      },
      testing::KilledBySignal(SIGABRT), Eq(last_words(NO_TYPE)));
}

}  // namespace
