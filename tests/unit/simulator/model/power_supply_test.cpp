#include "simulator/model/power_supply.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using simulator::model::InterruptsFull;
using simulator::model::PowerSupply;
using simulator::model::Reply;

constexpr std::chrono::milliseconds LONG{60'000};
constexpr std::chrono::milliseconds AT_ONCE{0};

class PowerSupplyTest : public simulator_test::ModelTest {
protected:
  PowerSupply& power_supply_ = unit_.power_supply();
};

TEST_F(PowerSupplyTest, StartsWithNothingSet) {
  EXPECT_EQ(power_supply_.reply(Reply::BATTERY_TEMPERATURE), 0);
  EXPECT_EQ(power_supply_.led_status(), -1);
  EXPECT_EQ(power_supply_.communication_status(), -1);
  EXPECT_EQ(power_supply_.interrupts_raised(), 0U);
  EXPECT_EQ(power_supply_.interrupt(1), std::nullopt);
}

TEST_F(PowerSupplyTest, KeepsTheSevenRepliesApart) {
  for (int kind = 0; kind < 7; ++kind) {
    power_supply_.set_reply(static_cast<Reply>(kind), 100 + kind);
  }
  for (int kind = 0; kind < 7; ++kind) {
    EXPECT_EQ(power_supply_.reply(static_cast<Reply>(kind)), 100 + kind);
  }
}

TEST_F(PowerSupplyTest, NumbersItsInterruptsFromOne) {
  EXPECT_EQ(power_supply_.raise_interrupt(0x41), 1U);
  EXPECT_EQ(power_supply_.raise_interrupt(-7), 2U);
  EXPECT_EQ(power_supply_.interrupt(0), std::nullopt);
  EXPECT_EQ(power_supply_.interrupt(1), 0x41);
  EXPECT_EQ(power_supply_.interrupt(2), -7);
  EXPECT_EQ(power_supply_.interrupt(3), std::nullopt);
}

TEST_F(PowerSupplyTest, WithoutDriverKeepsTheLastTwoHundredAndFiftySixInterrupts) {
  for (int value = 1; value <= 258; ++value) {
    power_supply_.raise_interrupt(value);
  }
  EXPECT_EQ(power_supply_.interrupt(1), 3);
  EXPECT_EQ(power_supply_.interrupt(3), 3);
  EXPECT_EQ(power_supply_.interrupt(4), 4);
  EXPECT_EQ(power_supply_.interrupt(258), 258);
}

TEST_F(PowerSupplyTest, AnInterruptOfAnotherProcessArrives) {
  const std::uint32_t seen = power_supply_.wake_up().count();
  const pid_t child = ::fork();
  if (child == 0) {
    simulator::model::UnitModel::open(path_).power_supply().raise_interrupt(0x20);
    ::_exit(0);
  }
  power_supply_.wake_up().wait(seen, LONG);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(power_supply_.interrupt(1), 0x20);
}

TEST_F(PowerSupplyTest, AnInterruptIsHandledOnceSomeDriverSaysSo) {
  std::optional<PowerSupply::Driver> driver = power_supply_.enter();
  ASSERT_TRUE(driver);
  const std::uint64_t first = power_supply_.raise_interrupt(1);
  const std::uint64_t second = power_supply_.raise_interrupt(2);
  EXPECT_FALSE(power_supply_.wait_interrupt_handled(first, AT_ONCE));
  PowerSupply::Driver slow = *driver;
  power_supply_.mark_interrupt_handled(*driver);
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(first, LONG));
  EXPECT_FALSE(power_supply_.wait_interrupt_handled(second, AT_ONCE));
  power_supply_.mark_interrupt_handled(*driver);
  power_supply_.mark_interrupt_handled(slow);
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(second, LONG));
  power_supply_.leave(*driver);
}

TEST_F(PowerSupplyTest, ADriverStartsWithTheInterruptsThatFollow) {
  power_supply_.raise_interrupt(1);
  const auto driver = power_supply_.enter();
  ASSERT_TRUE(driver);
  EXPECT_EQ(driver->next, 2U);
  power_supply_.leave(*driver);
}

TEST_F(PowerSupplyTest, AnInterruptThatASlowDriverWouldLoseIsRefused) {
  auto slow = power_supply_.enter();
  auto fast = power_supply_.enter();
  ASSERT_TRUE(slow && fast);
  for (int value = 1; value <= 256; ++value) {
    power_supply_.raise_interrupt(value);
    power_supply_.mark_interrupt_handled(*fast);
  }
  try {
    power_supply_.raise_interrupt(257);
    ADD_FAILURE() << "raised";
  } catch (const InterruptsFull& error) {
    EXPECT_STREQ(error.what(), "interrupt not raised: a driver has 256 unhandled ones");
  }
  EXPECT_EQ(power_supply_.interrupts_raised(), 256U);
  EXPECT_EQ(power_supply_.interrupt(slow->next), 1);
  power_supply_.mark_interrupt_handled(*slow);
  EXPECT_EQ(power_supply_.raise_interrupt(257), 257U);
  EXPECT_THROW(power_supply_.raise_interrupt(258), InterruptsFull);
  power_supply_.leave(*slow);
  EXPECT_EQ(power_supply_.raise_interrupt(258), 258U);
  power_supply_.leave(*fast);
}

TEST_F(PowerSupplyTest, ADriverThatWasKilledHoldsUpNobody) {
  int entered[2];
  ASSERT_EQ(::pipe(entered), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const char is_in = power_supply_.enter() ? 'y' : 'n';
    ::_exit(::write(entered[1], &is_in, 1) == 1 ? (::pause(), 0) : 1);
  }
  char is_in = 'n';
  ASSERT_EQ(::read(entered[0], &is_in, 1), 1);
  ASSERT_EQ(is_in, 'y');
  for (int value = 1; value <= 256; ++value) {
    power_supply_.raise_interrupt(value);
  }
  EXPECT_THROW(power_supply_.raise_interrupt(257), InterruptsFull);
  ASSERT_EQ(::kill(child, SIGKILL), 0);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(power_supply_.raise_interrupt(257), 257U);
  ::close(entered[0]);
  ::close(entered[1]);
}

TEST_F(PowerSupplyTest, HasRoomForSixtyFourDrivers) {
  std::vector<PowerSupply::Driver> drivers;
  while (const auto driver = power_supply_.enter()) {
    drivers.push_back(*driver);
  }
  EXPECT_EQ(drivers.size(), 64U);
  power_supply_.leave(drivers[10]);
  const auto again = power_supply_.enter();
  ASSERT_TRUE(again);
  EXPECT_EQ(again->seat, drivers[10].seat);
  for (const PowerSupply::Driver& driver : drivers) {
    power_supply_.leave(driver);
  }
}

}  // namespace
