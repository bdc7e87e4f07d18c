#include "simulator/model/power_supply.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

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

TEST_F(PowerSupplyTest, KeepsTheLastTwoHundredAndFiftySixInterrupts) {
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
  const std::uint64_t first = power_supply_.raise_interrupt(1);
  const std::uint64_t second = power_supply_.raise_interrupt(2);
  EXPECT_FALSE(power_supply_.wait_interrupt_handled(first, AT_ONCE));
  power_supply_.mark_interrupt_handled(first);
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(first, LONG));
  EXPECT_FALSE(power_supply_.wait_interrupt_handled(second, AT_ONCE));
  power_supply_.mark_interrupt_handled(second);
  power_supply_.mark_interrupt_handled(first);
  EXPECT_TRUE(power_supply_.wait_interrupt_handled(second, LONG));
}

}  // namespace
