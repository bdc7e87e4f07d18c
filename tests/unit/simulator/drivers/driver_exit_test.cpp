#include <dlfcn.h>
#include <gtest/gtest.h>
#include <psdriver.h>

#include <cstdlib>

#include "tests/unit/simulator/model/this_unit.h"

// Exit of processes that never delete their driver. Each case runs in its own child process.
namespace {

using simulator_test::ThisUnit;

constexpr char DEVICE[] = "/dev/null";

class DriverExitTest : public ::testing::Test {
protected:
  DriverExitTest() {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    ThisUnit::get().reset();
  }
};

/// The driver as its users keep it: reachable until the process ends, never deleted.
psdriver* kept_driver() {
  static psdriver* kept = nullptr;
  kept = new psdriver(DEVICE);
  kept->SetBatteryTemperatureCallback([](int) {});
  return kept;
}

TEST_F(DriverExitTest, AProcessThatLeavesItsDriverAliveEndsAsItSays) {
  EXPECT_EXIT(
      {
        kept_driver();
        std::exit(5);
      },
      ::testing::ExitedWithCode(5), "^$");
}

TEST_F(DriverExitTest, AProcessEndsWhileRepliesKeepComing) {
  EXPECT_EXIT(
      {
        psdriver* driver = kept_driver();
        for (int request = 0; request < 1000; ++request) {
          driver->GetBatteryTemperature();
        }
        std::exit(6);
      },
      ::testing::ExitedWithCode(6), "^$");
}

TEST_F(DriverExitTest, AProcessMayEndFromWithinACallBack) {
  EXPECT_EXIT(
      {
        psdriver* driver = kept_driver();
        driver->SetSwitchInterruptCallback([](int status) { std::exit(status); });
        ThisUnit::get().model().power_supply().raise_interrupt(7);
        ::pause();
      },
      ::testing::ExitedWithCode(7), "^$");
}

TEST_F(DriverExitTest, NoCallBackBeginsOnceEarlierObjectsAreDestroyed) {
  EXPECT_EXIT(
      {
        static bool destroyed = false;
        std::atexit([] {
          destroyed = true;
          ThisUnit::get().model().power_supply().raise_interrupt(1);
          ThisUnit::get().model().power_supply().wait_interrupt_handled(
              ThisUnit::get().model().power_supply().interrupts_raised(), std::chrono::seconds(60));
        });
        kept_driver()->SetSwitchInterruptCallback([](int) {
          if (destroyed) {
            ::_exit(99);
          }
        });
        std::exit(8);
      },
      ::testing::ExitedWithCode(8), "^$");
}

TEST_F(DriverExitTest, ALibraryMayEndTheProcessWhileItLoads) {
  EXPECT_EXIT(
      {
        ::dlopen(EXITING_LIBRARY, RTLD_NOW);
        std::exit(99);
      },
      ::testing::ExitedWithCode(7), "^$");
}

}  // namespace
