// A host that uses the library's exports and destroys the object.

#include <signal.h>

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::MatchesRegex;

TEST(DestructionTest, AHostUsesTheAttributeTextsAndDestroysTheObject) {
  SimulatedUnit unit;
  const Program host = unit.start().run({"destroying_host"});
  host.wait_for("destroyed\n");
  host.kill(SIGTERM);
  const Ending ending = host.wait();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, MatchesRegex("BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n"
                                       "Mode: Auto\nMode:       FF\nReference: external\ndestroyed\n"));
  EXPECT_EQ(ending.err, "");
}

// The power-supply driver continues without the object.
TEST(DestructionTest, InterruptsThatComeAfterTheObjectHasGoneDoNotUseIt) {
  SimulatedUnit unit;
  unit.recorded().start();
  const std::string brightness = unit.text("/sys/class/backlight/omap-bl/brightness").value();
  const Program host = unit.run({"destroying_host"});
  host.wait_for("destroyed\n");
  EXPECT_TRUE(unit.handled(unit.interrupt(0x160)));
  EXPECT_EQ(unit.text("/sys/class/backlight/omap-bl/brightness"), brightness);
  EXPECT_EQ(unit.text("/sys/class/backlight/omap-bl/bl_power"), "0");
  EXPECT_THAT(unit.call_names(), testing::Not(testing::Contains("psdriver.SetUserInterface_CommunicationStatus")));
  host.kill(SIGTERM);
  EXPECT_THAT(host.wait(), ExitedWith(0));
}

}  // namespace
