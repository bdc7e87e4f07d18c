#include <gtest/gtest.h>

#include "tests/doubles/child_process.h"
#include "tests/unit/simulator/model/this_unit.h"

namespace {

using doubles::ChildProcess;
using doubles::text_of;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator_test::ThisUnit;

class I2cReadTest : public ::testing::Test {
protected:
  I2cReadTest() {
    ThisUnit::get().reset();
    unit_.sensors().set_mic284(0x1A);
    unit_.sensors().set_i2c_read_status(0);
    unit_.sensors().set_i2c_read_prints(true);
  }

  /// Runs the tool; returns its exit status and keeps its output.
  int run(const std::string& arguments, const std::string& environment = "") {
    const std::string command = environment + " " I2C_READ_TOOL " " + arguments + " >" + ThisUnit::get().file("out") +
                                " 2>" + ThisUnit::get().file("err");
    const int status = ChildProcess({"sh", "-c", command}).wait();
    out_ = text_of(ThisUnit::get().file("out"));
    err_ = text_of(ThisUnit::get().file("err"));
    return status;
  }

  simulator::model::UnitModel& unit_ = ThisUnit::get().model();
  std::string out_;
  std::string err_;
};

TEST_F(I2cReadTest, PrintsTheSensorsRegisterAsHexadecimalText) {
  EXPECT_EQ(run("3 0x48 0"), 0);
  EXPECT_EQ(out_, "1a\n");
  EXPECT_EQ(err_, "");
  unit_.sensors().set_mic284(0xF6);
  EXPECT_EQ(run("3 72 0x0"), 0);
  EXPECT_EQ(out_, "f6\n");
}

TEST_F(I2cReadTest, NothingElseAnswers) {
  EXPECT_EQ(run("3 0x49 0"), 1);
  EXPECT_EQ(out_, "");
  EXPECT_EQ(err_, "i2c_read: no response on bus 3, device 0x49, register 0\n");
  EXPECT_EQ(run("2 0x48 0"), 1);
  EXPECT_EQ(run("3 0x48 1"), 1);
}

TEST_F(I2cReadTest, ThreeNumbersAreWanted) {
  EXPECT_EQ(run("3 0x48"), 2);
  EXPECT_EQ(err_, "usage: i2c_read BUS DEVICE REGISTER\n");
  EXPECT_EQ(run("3 0x48 0 0"), 2);
  EXPECT_EQ(run("3 0x48 zero"), 2);
  EXPECT_EQ(err_, "usage: i2c_read BUS DEVICE REGISTER (numbers)\n");
  EXPECT_EQ(run("3 0x48x 0"), 2);
}

TEST_F(I2cReadTest, EndsAndPrintsTheWayTheSensorIsSet) {
  unit_.sensors().set_i2c_read_status(4);
  EXPECT_EQ(run("3 0x48 0"), 4);
  EXPECT_EQ(out_, "1a\n");
  unit_.sensors().set_i2c_read_prints(false);
  EXPECT_EQ(run("3 0x48 0"), 4);
  EXPECT_EQ(out_, "");
}

TEST_F(I2cReadTest, MeetsItsFaults) {
  unit_.faults().arm(Point::I2C_READ, {FaultKind::FAIL, 0, 1, 1});
  EXPECT_EQ(run("3 0x48 0"), 1);
  EXPECT_EQ(err_, "i2c_read: device 0x48 on bus 3 does not answer\n");
  EXPECT_EQ(run("3 0x48 0"), 0);
  unit_.faults().arm(Point::I2C_READ, {FaultKind::GARBAGE, 0x100});
  EXPECT_EQ(run("3 0x48 0"), 0);
  EXPECT_EQ(out_, "100\n");
  unit_.faults().arm(Point::I2C_READ, {FaultKind::FAIL, 7});
  EXPECT_EQ(run("3 0x48 0"), 7);
}

TEST_F(I2cReadTest, AStuckSensorRepeatsItsLastValue) {
  unit_.faults().arm(Point::I2C_READ, {FaultKind::STUCK, 0, 2});
  unit_.sensors().set_mic284(0x1B);
  EXPECT_EQ(run("3 0x48 0"), 0);
  EXPECT_EQ(out_, "1b\n");
  unit_.sensors().set_mic284(0x1C);
  EXPECT_EQ(run("3 0x48 0"), 0);
  EXPECT_EQ(out_, "1b\n");
}

TEST_F(I2cReadTest, WithoutAUnitItFails) {
  EXPECT_EQ(run("3 0x48 0", "UNIT_RUN=/nowhere"), 1);
  EXPECT_EQ(err_, "i2c_read: /nowhere/model: No such file or directory\n");
}

}  // namespace
