// The library's two topics, with the rest of the unit in separate processes.

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::EndsWith;

const char DATA_AVAILABLE[] =
    "void Varnok::DDS_DataReaderListener<T>::on_data_available(DDS::DataReader*) [with T = Varnok::DDS_VoidMessage]";

class MessagesTest : public testing::Test {
protected:
  /// Refreshes the charger status with that reply.
  void charger_status(const Host& host, int reply) {
    unit_.set("power_supply.charger_status", reply);
    EXPECT_EQ(host.call("GetChargerStatus")["result"], true);
  }

  /// Starts a peer that publishes on command; returns once its messages reach the host.
  void start_peer() {
    peer_.emplace(unit_.run({"dds_peer", "orders"}));
    peer_->wait_for("joined\n");
  }

  void tell_peer(const std::string& order) {
    unit_.write("/run/unit/peer", order + "\n");
    peer_->wait_for("done\n", ++orders_);
  }

  /// How often the system LED has been set, counted while the unit is watched.
  std::uint64_t led_calls() { return unit_.calls_of(Point::SET_SYSTEM_LED_STATUS); }

  SimulatedUnit unit_;
  std::optional<Program> peer_;
  std::size_t orders_ = 0;
};

TEST_F(MessagesTest, OnlyChangesOfTheExternalVoltageArePublished) {
  const Host host = unit_.start().host();
  const Program listener = unit_.run({"dds_peer", "listen"});
  charger_status(host, 0x00);
  charger_status(host, 0x01);
  listener.wait_for("1\n");
  charger_status(host, 0x09);
  charger_status(host, 0x08);
  listener.wait_for("0\n");
  charger_status(host, 0x11);
  listener.wait_for("1\n", 2);
  EXPECT_EQ(listener.out(), "listening\n1\n0\n1\n");
}

TEST_F(MessagesTest, ALateJoinerGetsTheLastExternalVoltage) {
  const Host host = unit_.start().host();
  charger_status(host, 0x01);
  const Program first = unit_.run({"dds_peer", "listen"});
  first.wait_for("1\n");
  charger_status(host, 0x00);
  first.wait_for("0\n");
  const Program second = unit_.run({"dds_peer", "listen"});
  second.wait_for("0\n");
  EXPECT_EQ(first.out(), "listening\n1\n0\n");
  EXPECT_EQ(second.out(), "listening\n0\n");
}

TEST_F(MessagesTest, EachDoneLoadingMessageSetsTheLedOnce) {
  const Host host = unit_.recorded().start().host();
  start_peer();
  const std::uint64_t before = led_calls();
  for (int message = 0; message < 5; ++message) {
    tell_peer("write");
  }
  tell_peer("dispose");
  host.wait_for("disposed\n");
  EXPECT_EQ(led_calls(), before + 5);
  for (const json& call : unit_.calls()) {
    EXPECT_TRUE(call["at"] != "psdriver.SetSystemLEDStatus" || call["args"] == json::parse(R"({"value":12})"));
  }
  EXPECT_EQ(host.err(), "");
}

TEST_F(MessagesTest, AnInstanceThatIsDisposedIsReportedAndSetsNothing) {
  const Host host = unit_.recorded().start().host();
  start_peer();
  const std::uint64_t before = led_calls();
  tell_peer("dispose");
  host.wait_for("disposed\n");
  EXPECT_THAT(host.out(), EndsWith(std::string("\n") + DATA_AVAILABLE + " instance is disposed\n"));
  EXPECT_EQ(led_calls(), before);
}

TEST_F(MessagesTest, AnInstanceThatIsUnregisteredIsReportedAndSetsNothing) {
  const Host host = unit_.recorded().start().host();
  start_peer();
  const std::uint64_t before = led_calls();
  tell_peer("unregister");
  host.wait_for("unregistered\n");
  EXPECT_THAT(host.out(), EndsWith(std::string("\n") + DATA_AVAILABLE + " instance is unregistered\n"));
  EXPECT_EQ(led_calls(), before);
}

TEST_F(MessagesTest, AWriterThatGoesIsReportedAsUnregistered) {
  const Host host = unit_.recorded().start().host();
  start_peer();
  tell_peer("leave");
  host.wait_for("unregistered\n");
  EXPECT_THAT(host.out(), EndsWith(std::string("\n") + DATA_AVAILABLE + " instance is unregistered\n"));
}

TEST_F(MessagesTest, AMessageAfterADisposedOneSetsTheLedAgain) {
  const Host host = unit_.recorded().start().host();
  start_peer();
  const std::uint64_t before = led_calls();
  tell_peer("dispose");
  tell_peer("write");
  EXPECT_TRUE(eventually([&] { return led_calls() == before + 1; }));
  EXPECT_THAT(host.out(), EndsWith(std::string("\n") + DATA_AVAILABLE + " instance is disposed\n"));
}

TEST_F(MessagesTest, AnLedThatCannotBeSetIsOneEventAMessage) {
  const Host host = unit_.recorded().start().host();
  start_peer();
  unit_.fault(Point::SET_SYSTEM_LED_STATUS, {FaultKind::FAIL}).set("power_supply.led_status", -1);
  tell_peer("write");
  tell_peer("write");
  tell_peer("dispose");
  host.wait_for("disposed\n");
  const json failure =
      event("Handheld_Hardware::UIDoneLoadingDDS_SubCallback()", "Power Supply Driver Failure: UI Done Loading");
  EXPECT_THAT(unit_.events(), ElementsAre(failure, failure));
  EXPECT_EQ(unit_.setting("power_supply.led_status"), -1);
  EXPECT_EQ(host.err(), "");
}

}  // namespace
