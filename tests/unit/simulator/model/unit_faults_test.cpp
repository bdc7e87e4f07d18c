#include "simulator/model/unit_faults.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using simulator::model::Board;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::Reply;

class UnitFaultsTest : public simulator_test::ModelTest {
protected:
  void arm(Point point, FaultKind kind) { unit_.faults().arm(point, {kind}); }
};

TEST_F(UnitFaultsTest, AStuckReplyHoldsTheValueThatItHasThen) {
  unit_.power_supply().set_reply(Reply::BATTERY_TEMPERATURE, 27);
  arm(Point::GET_BATTERY_TEMPERATURE, FaultKind::STUCK);
  unit_.power_supply().set_reply(Reply::BATTERY_TEMPERATURE, 30);
  EXPECT_EQ(unit_.crossings().held(Point::GET_BATTERY_TEMPERATURE), 27);
}

TEST_F(UnitFaultsTest, AStuckSensorHoldsTheValueThatItHasThen) {
  unit_.sensors().set_mic284(0x1A);
  arm(Point::I2C_READ, FaultKind::STUCK);
  unit_.sensors().set_mic284(0x1B);
  EXPECT_EQ(unit_.crossings().held(Point::I2C_READ), 0x1A);
}

TEST_F(UnitFaultsTest, AStuckBoardHoldsEveryRegister) {
  unit_.board().set_register(1, 40, 70);
  unit_.board().set_register(1, 128, 5);
  unit_.board().set_rf_transfer_time(0);
  unit_.board().write(1, Board::RF_REQUEST, 128);
  unit_.board().read(1, 128);
  unit_.board().set_register(1, 128, 6);
  arm(Point::RADALT_READ, FaultKind::STUCK);
  unit_.board().set_register(1, 40, 71);
  unit_.board().write(1, Board::RF_REQUEST, 128);
  EXPECT_EQ(unit_.board().read(1, 128), 6U);
  EXPECT_EQ(unit_.held_board().shown(1, 40), 70U);
  EXPECT_EQ(unit_.held_board().shown(1, 128), 5U) << "the result of the last transfer";
  EXPECT_EQ(unit_.held_board().shown(1, Board::RF_REQUEST), 0U);
  EXPECT_EQ(unit_.held_board().shown(9, 9), 0U);
}

TEST_F(UnitFaultsTest, DisarmsFilesAndCallsAlike) {
  unit_.files().set_text(simulator::model::sysfs_files()[3], "38.5\n");
  arm(Point::FILE_CELSIUS, FaultKind::FAIL);
  arm(Point::RADALT_READ, FaultKind::FAIL);
  unit_.faults().disarm_all();
  EXPECT_FALSE(unit_.watched());
  EXPECT_EQ(unit_.faults().armed_at(Point::FILE_CELSIUS).kind, FaultKind::NONE);
  EXPECT_EQ(doubles::text_of(folder_ / "sys/class/hwmon/hwmon0/device/celsius"), "38.5\n");
}

TEST_F(UnitFaultsTest, CountsCallsAndHits) {
  unit_.faults().arm(Point::RADALT_READ, {FaultKind::FAIL, 0, 2});
  for (int call = 0; call < 3; ++call) {
    unit_.cross(Point::RADALT_READ, "{}");
  }
  EXPECT_EQ(unit_.faults().calls(Point::RADALT_READ), 3U);
  EXPECT_EQ(unit_.faults().hits(Point::RADALT_READ), 2U);
  unit_.faults().forget_calls();
  EXPECT_EQ(unit_.faults().calls(Point::RADALT_READ), 0U);
}

TEST_F(UnitFaultsTest, ARefusedFaultChangesNothing) {
  arm(Point::I2C_READ, FaultKind::STUCK);
  unit_.sensors().set_mic284(5);
  EXPECT_THROW(unit_.faults().arm(Point::I2C_READ, {FaultKind::STUCK, 0, 0}), std::invalid_argument);
  EXPECT_EQ(unit_.crossings().held(Point::I2C_READ), 0);
}

}  // namespace
