#pragma once

#include "tests/system/unit_fixture.h"

namespace system_test {

inline const char QUESTION[] = "System Prompt";
inline const char BL_POWER[] = "/sys/class/backlight/omap-bl/bl_power";
inline const char BRIGHTNESS[] = "/sys/class/backlight/omap-bl/brightness";

/// Output of failing lookups on standard error.
inline const char NO_GUI[] = "Handheld_Hardware::FindGuiManagerInstance Missing GuiManager err\n";
inline const char NO_EVERYBODY[] = "Handheld_Hardware::Missing Everybody Engine err, please load\n";
inline const char NO_ENUMERATION[] = "Handheld_Hardware::Missing HW Enumeration Engine err, please load\n";

/// Output of the power-switch handler on standard output.
inline std::string trace_line(int value) {
  return "PowerSwitch:Comm status interrupt value" + std::to_string(value) + "\n";
}
inline const std::string EVERYBODY_LINE = "Shutting down everybody engine\n";
inline const std::string ENUMERATION_LINE = "Shutting down hardware enum\n";
inline const std::string HARDWARE_LINE = "Hardware shutdown\n";

/// The record of a shutdown request, in parts.
inline const std::vector<std::string> REQUEST = {"psdriver.interrupt", "locker.take", "orb.lookup", "orb.lookup",
                                                 "orb.lookup"};
inline const std::vector<std::string> ASK = {"gui.ShowDialog"};
inline const std::vector<std::string> SCREEN = {"gui.ShowDialog", "gui.SetDialogSize"};
inline const std::vector<std::string> EVERYBODY = {"everybody_engine.GetShutdown", "locker.Init_core",
                                                   "everybody_engine.ShutdownAll"};
inline const std::vector<std::string> ENUMERATION = {"hw_enumerate.ShutdownEngine"};
inline const std::vector<std::string> HARDWARE = {"shell.shutdown", "psdriver.SetUserInterface_CommunicationStatus"};

inline std::vector<std::string> joined(std::initializer_list<std::vector<std::string>> parts) {
  std::vector<std::string> all;
  for (const auto& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

/// A unit with all its services and a host; its call record is on and empty.
class ShutdownTest : public testing::Test {
protected:
  ShutdownTest() : host_(unit_.with_services().start().host()) {
    load_trace_ = host_.out();
    unit_.recorded();
  }

  /// Raises an interrupt that asks no question and waits until it has been handled.
  void interrupt(int value) { ASSERT_TRUE(unit_.handled(unit_.interrupt(value))); }

  /// Raises an interrupt that asks the question, answers it, and waits until the interrupt has been handled.
  void interrupt_and_answer(int value, const std::string& label) {
    const std::uint64_t number = unit_.interrupt(value);
    ASSERT_TRUE(unit_.shows(QUESTION));
    ASSERT_TRUE(unit_.answer(QUESTION, label));
    ASSERT_TRUE(unit_.handled(number));
  }

  /// The library's output since it was loaded.
  std::string out() const { return host_.out().substr(load_trace_.size()); }

  SimulatedUnit unit_;
  Host host_;
  std::string load_trace_;
};

}  // namespace system_test
