// Loading the library, in separate processes and with the real engines.

#include <signal.h>

#include <algorithm>

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

const char LIBRARY[] = "/opt/unit/lib/libradalt_hardware.so";
const char TRACE_LINE[] = "BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n";
const char FAN_LINE[] = "BASE_HARDWARE::GetFanState 0\n";
const char NOT_CONNECTED[] = "Varnok::Connection_errors::Not_Connected";

class LoadTest : public testing::Test {
protected:
  /// The probe's report.
  json report() const { return json::parse(unit_.text("/run/unit/report.json").value_or("null")); }

  SimulatedUnit unit_;
};

TEST_F(LoadTest, MakesOneHardwareObjectWithoutFans) {
  const Ending ending = unit_.start().run_to_end({"load_probe", LIBRARY});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(report()["loads"], json::parse(R"([{"error":null}])"));
  EXPECT_EQ(report()["type"], "HARDWARE");
  EXPECT_EQ(report()["fan_state"], 4);
  const std::string address = report()["hardware"];
  EXPECT_EQ(ending.out, "BASE_HARDWARE::BASE_HARDWARE1 " + address + "\n" + FAN_LINE);
  EXPECT_EQ(ending.err, "BASE_HARDWARE::GetFanState index err\n");
}

TEST_F(LoadTest, WritesOneTraceLineAndNothingElse) {
  const Ending ending = unit_.start().run_to_end({"unit-host", "--load-only"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, MatchesRegex(TRACE_LINE));
  EXPECT_EQ(ending.err, "");
}

TEST_F(LoadTest, OpensTheBoardAfterThePowerSupplyAndRegistersTheSwitchHandlerLast) {
  unit_.recorded().start().run_to_end({"unit-host", "--load-only"});
  EXPECT_THAT(
      unit_.call_names(),
      ElementsAre("dds.participant", "psdriver.open", "radalt.init", "psdriver.SetBatteryRelativeStateOfChargeCallback",
                  "psdriver.SetCharger_BatteryStatusCallback", "psdriver.SetSoftwareVersionNumberCallback",
                  "psdriver.SetPowerSupplyTemperatureValueCallback", "psdriver.SetBatteryTemperatureCallback",
                  "psdriver.SetBatteryAverageTimeToEmptyCallback", "psdriver.SetBatteryRunTimeToEmptyCallback",
                  "psdriver.SetSwitchInterruptCallback"));
  EXPECT_EQ(unit_.calls()[1]["args"], json::parse(R"({"device":"/dev/i2c-3"})"));
}

TEST_F(LoadTest, KeepsTheHandleThatTheDriverReturned) {
  unit_.set("board.handle", 7).set("board.digital.temperature_count", 100).start();
  const Host host = unit_.host();
  EXPECT_EQ(host.call("getDigitalBoardTemp", {0.5})["result"], 50);
  EXPECT_EQ(host.call("read_hw", {7, 1, 40}), json::parse(R"({"result":0,"value":100})"));
  EXPECT_NE(host.call("read_hw", {3, 1, 40})["result"], 0);
}

TEST_F(LoadTest, HandleZeroIsAHandle) {
  unit_.set("board.handle", 0).set("board.digital.temperature_count", 100).start();
  EXPECT_EQ(unit_.host().call("getDigitalBoardTemp", {0.5})["result"], 50);
}

TEST_F(LoadTest, LoadingTwiceMakesNothingNew) {
  const Ending ending = unit_.recorded().start().run_to_end({"load_probe", LIBRARY, LIBRARY});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, MatchesRegex(std::string(TRACE_LINE) + FAN_LINE));
  EXPECT_EQ(ending.err, "BASE_HARDWARE::GetFanState index err\n");
  EXPECT_EQ(unit_.calls_of(Point::RADALT_INIT), 1U);
}

TEST_F(LoadTest, ASecondCopyOfTheLibraryRefusesAndLeavesThePointer) {
  unit_.recorded().start();
  unit_.shell("cp /opt/unit/lib/libradalt_hardware.so /run/unit/libcopy.so");
  const Ending ending =
      unit_.run_to_end({"load_probe", LIBRARY, "/run/unit/libcopy.so"}, {{"LD_LIBRARY_PATH", "/opt/unit/lib"}});
  EXPECT_THAT(ending, ExitedWith(0));
  const std::string address = report()["hardware"];
  EXPECT_EQ(ending.out, "BASE_HARDWARE::BASE_HARDWARE1 " + address + "\n" + FAN_LINE);
  EXPECT_EQ(ending.err, "so proxy err\nBASE_HARDWARE::GetFanState index err\n");
  EXPECT_EQ(unit_.calls_of(Point::RADALT_INIT), 1U);
}

TEST_F(LoadTest, AHardwareObjectThatIsThereAlreadyStays) {
  unit_.recorded().start();
  const Host host = unit_.host({"--preset-hardware"});
  EXPECT_EQ(host.call("hardware")["result"], "preset");
  const Ending ending = host.leave();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "so proxy err\n");
  EXPECT_THAT(unit_.call_names(), IsEmpty());
}

TEST_F(LoadTest, ABoardThatCannotBeOpenedEndsTheProcess) {
  unit_.fault(Point::RADALT_INIT, {FaultKind::FAIL, 19}).recorded().start();
  const Ending ending = unit_.run_to_end({"load_probe", LIBRARY});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_THAT(ending.out, MatchesRegex(TRACE_LINE));
  EXPECT_EQ(ending.err, " HARDWARE::Init  critical error opening device, errno=-19\n");
  EXPECT_EQ(report(), nullptr);
  EXPECT_THAT(unit_.call_names(), ElementsAre("dds.participant", "psdriver.open", "radalt.init"));
}

// The process exits during the load, while the engine's threads, the subscriber's start-up thread and the driver's
// thread are running.
TEST_F(LoadTest, ABoardThatCannotBeOpenedEndsTheProcessEveryTime) {
  unit_.fault(Point::RADALT_INIT, {FaultKind::FAIL, 5}).start();
  for (int run = 0; run < 30; ++run) {
    const Ending ending = unit_.run_to_end({"unit-host"});
    ASSERT_THAT(ending, ExitedWith(1)) << "run " << run;
    ASSERT_EQ(ending.err, " HARDWARE::Init  critical error opening device, errno=-5\n") << "run " << run;
  }
}

TEST_F(LoadTest, ABoardThatCannotBeOpenedEndsTheProcessWhileMessagesArrive) {
  unit_.fault(Point::RADALT_INIT, {FaultKind::FAIL, 5}).start();
  const Program peer = unit_.run({"dds_peer", "flood"});
  peer.wait_for("flooding\n");
  for (int run = 0; run < 20; ++run) {
    const Ending ending = unit_.run_to_end({"unit-host"});
    ASSERT_THAT(ending, ExitedWith(1)) << "run " << run;
    ASSERT_EQ(ending.err, " HARDWARE::Init  critical error opening device, errno=-5\n") << "run " << run;
    ASSERT_TRUE(peer.running());
  }
}

TEST_F(LoadTest, APowerSupplyDriverThatThrowsEndsTheLoadWithItsException) {
  unit_.fault(Point::PSDRIVER_OPEN, {FaultKind::FAIL, 6}).recorded().start();
  const Ending ending = unit_.run_to_end({"load_probe", LIBRARY});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(report()["loads"][0]["exception"]["type"], "psdriverError");
  EXPECT_EQ(report()["loads"][0]["exception"]["what"], "psdriver.open: No such device or address");
  EXPECT_EQ(report()["hardware"], nullptr);
  EXPECT_THAT(ending.out, MatchesRegex(TRACE_LINE));
  EXPECT_EQ(ending.err, "");
  EXPECT_THAT(unit_.call_names(), ElementsAre("dds.participant", "psdriver.open"));
}

// The objects made so far are destroyed while the subscriber is still starting.
TEST_F(LoadTest, APowerSupplyDriverThatThrowsIsReportedByTheHostEveryTime) {
  unit_.fault(Point::PSDRIVER_OPEN, {FaultKind::FAIL, 6}).start();
  for (int run = 0; run < 20; ++run) {
    const Ending ending = unit_.run_to_end({"unit-host"});
    ASSERT_THAT(ending, ExitedWith(1)) << "run " << run;
    ASSERT_EQ(ending.err, "unit-host: psdriver.open: No such device or address\n") << "run " << run;
  }
}

TEST_F(LoadTest, APublisherThatIsRefusedEndsTheLoadWithItsException) {
  const std::string text =
      "Varnok::DDS_Publisher<T>::DDS_Publisher(const char*) [with T = bool]:  Participant->create_topic "
      "[Halcyra/local/ExternalVoltage] [Varnok::QTNN_DDS::ATTR_BOOLEAN]";
  unit_.recorded().start();
  const Ending ending = unit_.run_to_end({"load_probe", "--occupy", "Halcyra/local/ExternalVoltage", "void", LIBRARY});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(report()["loads"][0]["exception"]["type"], NOT_CONNECTED);
  EXPECT_EQ(report()["loads"][0]["exception"]["what"], text);
  EXPECT_EQ(report()["hardware"], nullptr);
  EXPECT_EQ(ending.err, text + "\n");
  EXPECT_THAT(unit_.call_names(), ElementsAre("dds.participant"));
}

TEST_F(LoadTest, ASubscriberThatCannotStartEndsTheProcess) {
  unit_.start();
  const Ending ending =
      unit_.run_to_end({"load_probe", "--stay", "--occupy", "Halcyra/local/UIDoneLoading", "boolean", LIBRARY});
  EXPECT_THAT(ending, EndedBySignal(SIGABRT));
  EXPECT_THAT(ending.err,
              testing::StartsWith(
                  "void Varnok::DDS_SubscriberBase<T, U>::InitSubBase(Varnok::DDS_Subscriber<T>*, long int, long "
                  "unsigned int, DDS::DurabilityQosPolicyKind) [with T = Varnok::DDS_VoidMessage, F = void(const "
                  "char*)] err: Participant->create_topic [Varnok::QTNN_DDS::ATTR_VOID] "
                  "[Halcyra/local/UIDoneLoading]\nterminate called after throwing an instance of "
                  "'Varnok::Connection_errors::Not_Connected'\n"));
}

TEST_F(LoadTest, WithoutAParticipantTheSubscriberEndsTheProcess) {
  unit_.fault(Point::DDS_PARTICIPANT, {FaultKind::FAIL}).start();
  const Ending ending = unit_.run_to_end({"unit-host"});
  EXPECT_THAT(ending, EndedBySignal(SIGABRT));
  EXPECT_THAT(ending.err,
              testing::StartsWith("void Varnok::DDS_SubscriberBase<T, U>::InitSubBase(Varnok::DDS_Subscriber<T>*, long "
                                  "int, long unsigned int, DDS::DurabilityQosPolicyKind) [with T = "
                                  "Varnok::DDS_VoidMessage, F = void(const char*)] err: Participant NULL\n"));
}

TEST_F(LoadTest, ARegistrationThatFailsIsOneEventAndTheLaterOnesAreNotMade) {
  unit_.fault(Point::SET_SOFTWARE_VERSION_NUMBER_CALLBACK, {FaultKind::FAIL}).recorded().start();
  const Host host = unit_.host();
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::InitHandheld_Hardware()",
                                                "Power Supply Driver Failure: Initialize Handheld_Hardware")));
  EXPECT_THAT(unit_.call_names(), ElementsAre("dds.participant", "psdriver.open", "radalt.init",
                                              "psdriver.SetBatteryRelativeStateOfChargeCallback",
                                              "psdriver.SetCharger_BatteryStatusCallback",
                                              "psdriver.SetSoftwareVersionNumberCallback", "events.send"));
  EXPECT_EQ(host.call("GetChargerStatus")["result"], true);
  EXPECT_TRUE(unit_.handled(unit_.interrupt(0x40)));
  const Ending ending = host.leave();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, MatchesRegex(TRACE_LINE));
  EXPECT_EQ(ending.err, "");
  EXPECT_EQ(unit_.text("/sys/class/backlight/omap-bl/bl_power"), "1\n");
}

TEST_F(LoadTest, EveryLoadLeavesCleanly) {
  unit_.start();
  for (int run = 0; run < 50; ++run) {
    const Ending ending = unit_.run_to_end({"unit-host", "--load-only"});
    ASSERT_THAT(ending, ExitedWith(0)) << "run " << run;
    ASSERT_THAT(ending.out, MatchesRegex(TRACE_LINE)) << "run " << run;
    ASSERT_EQ(ending.err, "") << "run " << run;
  }
}

TEST_F(LoadTest, AHostThatHasServedLeavesCleanly) {
  unit_.start();
  for (int run = 0; run < 10; ++run) {
    const Host host = unit_.host();
    ASSERT_EQ(host.call("GetChargerStatus")["result"], true) << "run " << run;
    ASSERT_THAT(host.leave(), ExitedWith(0)) << "run " << run;
  }
}

TEST_F(LoadTest, ExitsWhileMessagesArrive) {
  unit_.start();
  const Program peer = unit_.run({"dds_peer", "flood"});
  for (int run = 0; run < 10; ++run) {
    const Host host = unit_.host();
    unit_.set("power_supply.led_status", -1);
    ASSERT_TRUE(eventually([this] { return unit_.setting("power_supply.led_status") == 12; })) << "run " << run;
    const Ending ending = host.leave();
    ASSERT_THAT(ending, ExitedWith(0)) << "run " << run;
    ASSERT_EQ(ending.err, "") << "run " << run;
    ASSERT_TRUE(peer.running());
  }
}

// The subscription is ready long before this driver is.
TEST_F(LoadTest, MessagesThatComeBeforeTheDriverWaitForIt) {
  unit_.fault(Point::PSDRIVER_OPEN, {FaultKind::SLOW, 700}).recorded().start();
  const Program peer = unit_.run({"dds_peer", "flood"});
  peer.wait_for("flooding\n");
  const Host host = unit_.host();
  ASSERT_TRUE(eventually([this] { return unit_.setting("power_supply.led_status") == 12; }));
  EXPECT_THAT(host.leave(), ExitedWith(0));
  const std::vector<std::string> calls = unit_.call_names();
  const auto opened = std::find(calls.begin(), calls.end(), "psdriver.open");
  EXPECT_LT(opened, std::find(calls.begin(), calls.end(), "psdriver.SetSystemLEDStatus"));
}

TEST_F(LoadTest, ExitsWhileTheLoadIsCaughtUpByMessages) {
  unit_.start();
  const Program peer = unit_.run({"dds_peer", "flood"});
  peer.wait_for("flooding\n");
  for (int run = 0; run < 10; ++run) {
    const Ending ending = unit_.run_to_end({"unit-host", "--load-only"});
    ASSERT_THAT(ending, ExitedWith(0)) << "run " << run;
    ASSERT_EQ(ending.err, "") << "run " << run;
    ASSERT_TRUE(peer.running());
  }
}

}  // namespace
