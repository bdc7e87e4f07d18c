#include "simulator/model/faults.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace {

using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Faults;
using simulator::model::Point;
using simulator::model::Watch;

class FaultsTest : public ::testing::Test {
protected:
  /// Results of the next calls of the point, one character per call: '.' no fault, '!' the fault.
  std::string next_calls(Point point, int calls) {
    std::string met;
    for (int call = 0; call < calls; ++call) {
      met += faults_.strike(point).kind == FaultKind::NONE ? '.' : '!';
    }
    return met;
  }

  std::unique_ptr<Faults> owner_ = std::make_unique<Faults>();
  Faults& faults_ = *owner_;
};

TEST_F(FaultsTest, NothingGoesWrongUnlessArmed) {
  EXPECT_EQ(next_calls(Point::RADALT_READ, 3), "...");
  EXPECT_FALSE(faults_.watch().any());
}

TEST_F(FaultsTest, AFaultHitsFromItsNthCallOn) {
  faults_.arm(Point::RADALT_READ, {FaultKind::FAIL, 5, 3, Fault::ALWAYS});
  EXPECT_EQ(next_calls(Point::RADALT_READ, 6), "..!!!!");
  EXPECT_EQ(next_calls(Point::RADALT_WRITE, 2), "..");
}

TEST_F(FaultsTest, AFaultHitsAsOftenAsItSays) {
  faults_.arm(Point::RADALT_READ, {FaultKind::FAIL, 5, 2, 2});
  EXPECT_EQ(next_calls(Point::RADALT_READ, 6), ".!!...");
  faults_.arm(Point::RADALT_READ, {FaultKind::FAIL, 5, 1, 1});
  EXPECT_EQ(next_calls(Point::RADALT_READ, 3), "!..");
}

TEST_F(FaultsTest, CallsAreCountedFromTheArming) {
  next_calls(Point::RADALT_READ, 5);
  faults_.arm(Point::RADALT_READ, {FaultKind::FAIL, 5, 2, 1});
  EXPECT_EQ(next_calls(Point::RADALT_READ, 3), ".!.");
}

TEST_F(FaultsTest, AnArmedFaultIsHandedOutWhole) {
  faults_.arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::GARBAGE, -40, 1, Fault::ALWAYS});
  const Fault met = faults_.strike(Point::GET_BATTERY_TEMPERATURE);
  EXPECT_EQ(met.kind, FaultKind::GARBAGE);
  EXPECT_EQ(met.value, -40);
  EXPECT_EQ(faults_.armed_at(Point::GET_BATTERY_TEMPERATURE).value, -40);
}

TEST_F(FaultsTest, TheUnitIsWatchedWhileAnyFaultIsArmed) {
  faults_.arm(Point::RADALT_READ, {FaultKind::FAIL, 5});
  faults_.arm(Point::RADALT_WRITE, {FaultKind::FAIL, 5});
  EXPECT_TRUE(faults_.watch().has(Watch::FAULTED));
  faults_.arm(Point::RADALT_READ, Fault{});
  EXPECT_TRUE(faults_.watch().has(Watch::FAULTED));
  faults_.disarm_all();
  EXPECT_FALSE(faults_.watch().any());
  EXPECT_EQ(next_calls(Point::RADALT_WRITE, 1), ".");
}

TEST_F(FaultsTest, CountsCallsUntilTheyAreForgotten) {
  next_calls(Point::ORB_LOOKUP, 4);
  EXPECT_EQ(faults_.calls(Point::ORB_LOOKUP), 4U);
  EXPECT_EQ(faults_.calls(Point::EVENTS_SEND), 0U);
  faults_.forget_calls();
  EXPECT_EQ(faults_.calls(Point::ORB_LOOKUP), 0U);
}

TEST_F(FaultsTest, RefusesAFaultThatThePointDoesNotAdmit) {
  try {
    faults_.arm(Point::RADALT_WRITE, {FaultKind::TWICE, 0});
    FAIL() << "armed";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "radalt.write: admits none, fail, slow, not twice");
  }
  EXPECT_FALSE(faults_.watch().any());
}

}  // namespace
