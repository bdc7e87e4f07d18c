#include "tests/unit/base/plain_hardware.h"
#include "tests/unit/handheld/power_switch_under_test.h"

// The object that handles an interrupt.

namespace {

using doubles::calls;
using doubles::file_text;

class SwitchOwnerTest : public PowerSwitchSurroundings {
protected:
  /// Whether an interrupt that requests both raised the backlight and shut the unit down.
  bool brightens() const { return file_text(BRIGHTNESS_FILE) == "255"; }
  bool shuts_down() const { return calls().count(SCRIPT) == 1; }
};

TEST_F(SwitchOwnerTest, TheHardwareIsShutDownThroughTheVirtualInterface) {
  struct OtherHardware : PlainHandheld {
    void shutdown() override { calls().record("other shutdown"); }
  } other;
  Hardware = &other;
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_EQ(calls().count("other shutdown"), 1U);
  EXPECT_FALSE(shuts_down());
  EXPECT_TRUE(brightens());
}

TEST_F(SwitchOwnerTest, BeforeTheHostsPointerIsSetBothStepsMeanTheRegisteredObject) {
  Hardware = nullptr;
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_EQ(calls().all(), whole_shutdown());
  EXPECT_TRUE(brightens());
}

TEST_F(SwitchOwnerTest, AHostsOwnHardwareHasNoBacklightOfThisLayer) {
  struct HostsHardware : PlainHardware {
    void shutdown() override { calls().record("host's shutdown"); }
  } hosts;
  Hardware = &hosts;
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_EQ(calls().count("host's shutdown"), 1U);
  EXPECT_FALSE(brightens());
}

TEST_F(SwitchOwnerTest, ADestroyedObjectIsNotUsedAndTheOtherStepsGoOn) {
  unit_.reset();
  driver_.interrupt(0x160);
  doubles::Calls expected = whole_shutdown();
  expected.erase(expected.end() - 3, expected.end() - 1);
  EXPECT_EQ(calls().all(), expected);
  EXPECT_EQ(output_.out(), trace(0x160) + PROGRESS);
  EXPECT_FALSE(brightens());
  EXPECT_EQ(file_text(POWER_FILE), "0");
}

TEST_F(SwitchOwnerTest, ADestroyedObjectIsNotUsedWithoutTheHostsPointerEither) {
  Hardware = nullptr;
  unit_.reset();
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_FALSE(shuts_down());
  EXPECT_FALSE(brightens());
}

TEST_F(SwitchOwnerTest, TheEndOfAnotherObjectChangesNothing) {
  { const PlainHandheld other; }
  calls().clear();
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_TRUE(shuts_down());
  EXPECT_TRUE(brightens());
}

TEST_F(SwitchOwnerTest, AnObjectThatRegistersAfterTheEndOfTheFirstIsUsed) {
  unit_.reset();
  unit_ = std::make_unique<PlainHandheld>();
  unit_->InitHardware();
  Hardware = unit_.get();
  calls().clear();
  Handheld_Hardware::PowerSwitch(0x120);
  EXPECT_TRUE(shuts_down());
  EXPECT_TRUE(brightens());
}

}  // namespace
