// The library linked in every order of its three layers: everything that the hardware object needs exists when it is
// made.

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::Values;

class InitOrderTest : public testing::TestWithParam<const char*> {
protected:
  std::string library() const { return std::string("/opt/unit/lib/tests/libinit_order_") + GetParam() + ".so"; }

  SimulatedUnit unit_;
};

// An event is sent while the library is still loading.
TEST_P(InitOrderTest, TheEventChannelIsAliveWhileTheObjectIsMade) {
  unit_.fault(Point::SET_SWITCH_INTERRUPT_CALLBACK, {FaultKind::FAIL}).start();
  EXPECT_THAT(unit_.run_to_end({"unit-host", "--load-only", "--library", library()}), ExitedWith(0));
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::InitHandheld_Hardware()",
                                                "Power Supply Driver Failure: Initialize Handheld_Hardware")));
}

// A failing construction destroys the subscriber, under the mutex that serialises it.
TEST_P(InitOrderTest, TheSubscribersMutexIsAliveWhileTheObjectIsMade) {
  unit_.fault(Point::PSDRIVER_OPEN, {FaultKind::FAIL}).start();
  const Ending ending = unit_.run_to_end({"load_probe", library()});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.err, "");
  EXPECT_EQ(json::parse(unit_.text("/run/unit/report.json").value())["loads"][0]["exception"]["type"], "psdriverError");
}

TEST_P(InitOrderTest, EveryReplyFindsItsSemaphore) {
  const Host host = unit_.start().host({"--library", library()});
  EXPECT_EQ(host.call("GetChargerStatus"), json::parse(R"({"result":true})"));
  EXPECT_EQ(host.call("GetBatteryChargeStatus"), json::parse(R"({"result":true,"charge":57})"));
  EXPECT_EQ(host.call("GetVersionList")["versions"][9],
            json::parse(R"({"name":"Power Supply Version","version":"1.02.03"})"));
  EXPECT_EQ(host.call("GetTemperature")["temperatures"], json::parse(R"([{"name":"RF Temperature","celsius":31.01001},
                            {"name":"Power Supply Temperature","celsius":25.3},
                            {"name":"Battery Temperature","celsius":27.0},
                            {"name":"Slot 1 MIC284 Temperature","celsius":26.0},
                            {"name":"Slot 1 OMAP Temperature","celsius":38.5},
                            {"name":"Digital Board Temperature","celsius":35.25}])"));
  const Ending ending = host.leave();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.err, "");
}

INSTANTIATE_TEST_SUITE_P(EveryOrder, InitOrderTest,
                         Values("base_handheld_board", "base_board_handheld", "handheld_base_board",
                                "handheld_board_base", "board_base_handheld", "board_handheld_base"),
                         [](const auto& order) { return std::string(order.param); });

}  // namespace
