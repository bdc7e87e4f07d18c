// A shutdown whose services are missing, of another interface, slow, dying or throwing: the unit is still shut down.

#include "tests/system/shutdown_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAreArray;

// A service's behaviour, whether the question is still shown, the calls made and the output.
struct Failing {
  std::string name;
  Service service;
  ServiceBehaviour behaviour;
  bool asks;
  std::vector<std::string> calls;
  std::string progress;
  std::string errors;
};

void PrintTo(const Failing& failing, std::ostream* stream) {
  *stream << failing.name;
}

class FailingServiceTest : public ShutdownTest, public testing::WithParamInterface<Failing> {};

TEST_P(FailingServiceTest, TheUnitIsShutDownAllTheSame) {
  unit_.set("services." + std::string(name_of(GetParam().service)) + ".slow_ms", 150);
  unit_.behave(GetParam().service, GetParam().behaviour);
  if (GetParam().asks) {
    interrupt_and_answer(0x140, "Ok");
  } else {
    interrupt(0x140);
  }
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(GetParam().calls));
  EXPECT_EQ(out(), trace_line(0x140) + GetParam().progress);
  EXPECT_EQ(host_.err(), GetParam().errors);
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), 0x100);
  EXPECT_EQ(unit_.text(BL_POWER), "0");
  EXPECT_EQ(host_.call("GetChargerStatus")["result"], true);
}

const std::string ALL_LINES = std::string(EVERYBODY_LINE) + ENUMERATION_LINE + HARDWARE_LINE;
const std::string NO_EVERYBODY_LINES = std::string(ENUMERATION_LINE) + HARDWARE_LINE;
const std::vector<std::string> ALL_CALLS = joined({REQUEST, ASK, SCREEN, EVERYBODY, ENUMERATION, HARDWARE});
const std::vector<std::string> NO_GUI_CALLS = joined({REQUEST, EVERYBODY, ENUMERATION, HARDWARE});
const std::vector<std::string> ASKED_ONCE = joined({REQUEST, ASK, EVERYBODY, ENUMERATION, HARDWARE});
const std::vector<std::string> NO_EVERYBODY_CALLS = joined({REQUEST, ASK, SCREEN, ENUMERATION, HARDWARE});
const std::vector<std::string> EVERYBODY_FAILS =
    joined({REQUEST, ASK, SCREEN, {"everybody_engine.GetShutdown"}, ENUMERATION, HARDWARE});
const std::vector<std::string> NO_ENUMERATION_CALLS = joined({REQUEST, ASK, SCREEN, EVERYBODY, HARDWARE});

INSTANTIATE_TEST_SUITE_P(
    Services, FailingServiceTest,
    testing::Values(
        Failing{"AbsentGui", Service::GUI_MANAGER, ServiceBehaviour::ABSENT, false, NO_GUI_CALLS, ALL_LINES, NO_GUI},
        Failing{"WrongGui", Service::GUI_MANAGER, ServiceBehaviour::WRONG_TYPE, false, NO_GUI_CALLS, ALL_LINES, ""},
        Failing{"DyingGui", Service::GUI_MANAGER, ServiceBehaviour::DIES_IN_CALL, false, ASKED_ONCE, ALL_LINES, ""},
        Failing{"ThrowingGui", Service::GUI_MANAGER, ServiceBehaviour::THROWS, false, ALL_CALLS, ALL_LINES, ""},
        Failing{"SlowGui", Service::GUI_MANAGER, ServiceBehaviour::SLOW, true, ALL_CALLS, ALL_LINES, ""},
        Failing{"AbsentEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::ABSENT, true, NO_EVERYBODY_CALLS,
                NO_EVERYBODY_LINES, NO_EVERYBODY},
        Failing{"WrongEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::WRONG_TYPE, true, NO_EVERYBODY_CALLS,
                NO_EVERYBODY_LINES, "EveryBdyPtr is null\n"},
        Failing{"DyingEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::DIES_IN_CALL, true, EVERYBODY_FAILS,
                ALL_LINES, ""},
        Failing{"ThrowingEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::THROWS, true, EVERYBODY_FAILS,
                ALL_LINES, ""},
        Failing{"SlowEverybody", Service::EVERYBODY_ENGINE, ServiceBehaviour::SLOW, true, ALL_CALLS, ALL_LINES, ""},
        Failing{"AbsentEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::ABSENT, true, NO_ENUMERATION_CALLS,
                ALL_LINES, NO_ENUMERATION},
        Failing{"WrongEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::WRONG_TYPE, true, NO_ENUMERATION_CALLS,
                ALL_LINES, "HwEnumPtr is null\n"},
        Failing{"DyingEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::DIES_IN_CALL, true, ALL_CALLS, ALL_LINES,
                ""},
        Failing{"ThrowingEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::THROWS, true, ALL_CALLS, ALL_LINES, ""},
        Failing{"SlowEnumeration", Service::HW_ENUMERATE, ServiceBehaviour::SLOW, true, ALL_CALLS, ALL_LINES, ""}),
    [](const auto& failing) { return failing.param.name; });

// One failing call of a working service, and the calls then made.
struct FailingCall {
  Point point;
  Fault fault;
  std::vector<std::string> calls;
};

void PrintTo(const FailingCall& failing_call, std::ostream* stream) {
  *stream << simulator::model::name_of(failing_call.point) << ": " << testing::PrintToString(failing_call.calls);
}

class FailingCallTest : public ShutdownTest, public testing::WithParamInterface<FailingCall> {};

TEST_P(FailingCallTest, TheNextStepFollows) {
  unit_.fault(GetParam().point, GetParam().fault);
  interrupt_and_answer(0x100, "Ok");
  EXPECT_THAT(unit_.call_names(), ElementsAreArray(GetParam().calls));
  EXPECT_EQ(out(), trace_line(0x100) + ALL_LINES);
  EXPECT_EQ(host_.err(), "");
  EXPECT_EQ(unit_.setting("power_supply.communication_status"), 0x100);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, FailingCallTest,
    testing::Values(FailingCall{Point::GUI_SHOW_DIALOG, {FaultKind::FAIL, 0, 2}, ALL_CALLS},
                    FailingCall{Point::GUI_SET_DIALOG_SIZE, {FaultKind::FAIL}, ALL_CALLS},
                    FailingCall{Point::EVERYBODY_GET_SHUTDOWN, {FaultKind::GARBAGE}, EVERYBODY_FAILS},
                    FailingCall{Point::EVERYBODY_SHUTDOWN_ALL, {FaultKind::FAIL}, ALL_CALLS},
                    FailingCall{Point::HW_ENUMERATE_SHUTDOWN_ENGINE, {FaultKind::FAIL}, ALL_CALLS}));

// A unit without naming service and services: the power supply is still shut down.
TEST(LonelyUnitTest, WithoutANamingServiceTheUnitIsShutDown) {
  SimulatedUnit unit;
  const Host host = unit.start().host();
  ASSERT_TRUE(unit.handled(unit.interrupt(0x100)));
  EXPECT_EQ(host.err(), std::string(NO_GUI) + NO_EVERYBODY + NO_ENUMERATION);
  EXPECT_EQ(unit.setting("power_supply.communication_status"), 0x100);
}

}  // namespace
