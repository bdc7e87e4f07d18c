#pragma once

#include <gtest/gtest.h>
#include <psdriver.h>

#include "tests/doubles/heard.h"
#include "tests/unit/simulator/model/this_unit.h"

namespace simulator_test {

using doubles::hear;
using doubles::heard;
using doubles::Heard;

class DriverTest : public ::testing::Test {
protected:
  DriverTest() {
    ThisUnit::get().reset();
    heard.clear();
    unit_.power_supply().set_reply_delay(0);
  }
  ~DriverTest() override { ThisUnit::get().reset(); }

  simulator::model::UnitModel& unit_ = ThisUnit::get().model();
  simulator::model::PowerSupply& power_supply_ = unit_.power_supply();
};

}  // namespace simulator_test
