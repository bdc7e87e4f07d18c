#include <radalt.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

#include <nlohmann/json.hpp>

#include "tests/unit/simulator/model/this_unit.h"

namespace {

using doubles::lines_of;
using nlohmann::json;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator_test::ThisUnit;

class RadaltTest : public ::testing::Test {
protected:
  RadaltTest() { ThisUnit::get().reset(); }
  ~RadaltTest() override { ThisUnit::get().reset(); }

  void arm(Point point, const Fault& fault) { unit_.faults().arm(point, fault); }

  simulator::model::UnitModel& unit_ = ThisUnit::get().model();
  const int handle_ = Radalt_Init();
  unsigned value_ = 0xAAAAAAAA;
};

TEST_F(RadaltTest, OpensWithTheUnitsHandle) {
  unit_.board().set_handle(19);
  EXPECT_EQ(Radalt_Init(), 19);
  unit_.board().set_handle(handle_);
  EXPECT_EQ(Radalt_Init(), handle_);
}

TEST_F(RadaltTest, ReadsAndWritesTheUnitsRegisters) {
  EXPECT_EQ(Radalt_Write(handle_, 1, 40, 70), 0);
  EXPECT_EQ(unit_.board().register_value(1, 40), 70U);
  unit_.board().set_register(1, 40, 71);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, 71U);
}

TEST_F(RadaltTest, AnotherHandleIsRefused) {
  EXPECT_EQ(Radalt_Read(handle_ + 1, 1, 40, &value_), EBADF);
  EXPECT_EQ(value_, 0xAAAAAAAA);
  EXPECT_EQ(Radalt_Write(handle_ + 1, 1, 40, 1), EBADF);
  EXPECT_EQ(Radalt_LockGet(-1), EBADF);
  EXPECT_EQ(Radalt_LockPut(-1), EBADF);
}

TEST_F(RadaltTest, ABoardThatIsFullRefusesANewRegister) {
  for (unsigned address = 0; Radalt_Write(handle_, 9, address, 1) == 0; ++address) {
    ASSERT_LT(address, 4096U);
  }
  EXPECT_EQ(Radalt_Write(handle_, 9, 5000, 1), ENOSPC);
  unit_.count_calls(true);
  EXPECT_EQ(Radalt_Write(handle_, 9, 5000, 1), ENOSPC);
}

TEST_F(RadaltTest, TheLockIsKeptFromOthersWhileHeld) {
  ASSERT_EQ(Radalt_LockGet(handle_), 0);
  int other = -1;
  std::thread thread([&] {
    EXPECT_EQ(Radalt_LockPut(handle_), EPERM);
    other = Radalt_LockGet(handle_);
    EXPECT_EQ(Radalt_LockPut(handle_), 0);
  });
  EXPECT_EQ(Radalt_LockGet(handle_), EDEADLK);
  EXPECT_EQ(Radalt_LockPut(handle_), 0);
  thread.join();
  EXPECT_EQ(other, 0);
}

TEST_F(RadaltTest, AFailedOpeningIsANegativeErrorNumber) {
  arm(Point::RADALT_INIT, {FaultKind::FAIL, ENXIO});
  EXPECT_EQ(Radalt_Init(), -ENXIO);
  arm(Point::RADALT_INIT, {FaultKind::FAIL, -ENXIO});
  EXPECT_EQ(Radalt_Init(), -ENXIO);
  arm(Point::RADALT_INIT, {FaultKind::FAIL, 0});
  EXPECT_EQ(Radalt_Init(), -EIO);
}

TEST_F(RadaltTest, AFailedReadLeavesTheWordUntouched) {
  unit_.board().set_register(1, 40, 70);
  arm(Point::RADALT_READ, {FaultKind::FAIL, EBUSY, 2, 1});
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, 70U);
  value_ = 1;
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), EBUSY);
  EXPECT_EQ(value_, 1U);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
}

TEST_F(RadaltTest, AGarbledReadSucceedsWithTheWrongWord) {
  unit_.board().set_register(1, 40, 70);
  arm(Point::RADALT_READ, {FaultKind::GARBAGE, -1});
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, 0xFFFFFFFF);
}

TEST_F(RadaltTest, EachGarbledReadIsDrawn) {
  Fault fault{FaultKind::GARBAGE};
  fault.seed = 3;
  fault.draws = true;
  unsigned first = 0;
  unsigned second = 0;
  arm(Point::RADALT_READ, fault);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &first), 0);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &second), 0);
  EXPECT_NE(first, second);
  arm(Point::RADALT_READ, fault);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, first);
}

TEST_F(RadaltTest, AStuckReadRepeatsTheRegistersLastWord) {
  unit_.board().set_register(1, 40, 70);
  unit_.board().set_register(9, 1, 80);
  arm(Point::RADALT_READ, {FaultKind::STUCK, 0, 2});
  unit_.board().set_register(1, 40, 71);
  unit_.board().set_register(9, 1, 81);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, 71U) << "not hit";
  unit_.board().set_register(1, 40, 72);
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, 71U) << "delivered before";
  EXPECT_EQ(Radalt_Read(handle_, 9, 1, &value_), 0);
  EXPECT_EQ(value_, 80U) << "current when the fault was armed";
  arm(Point::RADALT_READ, Fault{});
  EXPECT_EQ(Radalt_Read(handle_, 1, 40, &value_), 0);
  EXPECT_EQ(value_, 72U);
}

TEST_F(RadaltTest, AFailedWriteChangesNothing) {
  unit_.board().set_register(1, 40, 70);
  arm(Point::RADALT_WRITE, {FaultKind::FAIL, EIO});
  EXPECT_EQ(Radalt_Write(handle_, 1, 40, 71), EIO);
  EXPECT_EQ(unit_.board().register_value(1, 40), 70U);
}

TEST_F(RadaltTest, AFailedLockIsNotTaken) {
  arm(Point::RADALT_LOCK_GET, {FaultKind::FAIL, EBUSY});
  EXPECT_EQ(Radalt_LockGet(handle_), EBUSY);
  unit_.faults().disarm_all();
  EXPECT_EQ(Radalt_LockPut(handle_), EPERM);
}

TEST_F(RadaltTest, AFailedUnlockKeepsTheLock) {
  ASSERT_EQ(Radalt_LockGet(handle_), 0);
  arm(Point::RADALT_LOCK_PUT, {FaultKind::FAIL, EIO});
  EXPECT_EQ(Radalt_LockPut(handle_), EIO);
  unit_.faults().disarm_all();
  EXPECT_EQ(Radalt_LockPut(handle_), 0);
}

TEST_F(RadaltTest, EveryCrossingIsRecorded) {
  unit_.record().start();
  Radalt_Init();
  Radalt_LockGet(handle_);
  Radalt_Write(handle_, 1, 40, 70);
  Radalt_Read(handle_, 2, 44, &value_);
  Radalt_LockPut(handle_);
  std::vector<std::string> crossings;
  for (const std::string& line : lines_of(ThisUnit::get().file("calls.jsonl"))) {
    crossings.push_back(json::parse(line)["at"].get<std::string>() + " " + json::parse(line)["args"].dump());
  }
  EXPECT_EQ(crossings, (std::vector<std::string>{"radalt.init {}", "radalt.lock_get {}",
                                                 R"(radalt.write {"address":40,"space":1,"value":70})",
                                                 R"(radalt.read {"address":44,"space":2})", "radalt.lock_put {}"}));
}

}  // namespace
