#include "simulator/model/faults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

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
  faults_.arm(Point::RADALT_WRITE, Fault{});
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

TEST_F(FaultsTest, AFaultHitsEverySoManyCalls) {
  Fault fault{FaultKind::FAIL, 5, 2, Fault::ALWAYS, 3};
  faults_.arm(Point::RADALT_READ, fault);
  EXPECT_EQ(next_calls(Point::RADALT_READ, 9), ".!..!..!.");
  fault.times = 2;
  faults_.arm(Point::RADALT_READ, fault);
  EXPECT_EQ(next_calls(Point::RADALT_READ, 9), ".!..!....");
}

TEST_F(FaultsTest, AnImprobableFaultHitsTheSameCallsForTheSameSeed) {
  Fault fault{FaultKind::FAIL, 5};
  fault.probability = 30;
  fault.seed = 7;
  faults_.arm(Point::RADALT_READ, fault);
  const std::string hit = next_calls(Point::RADALT_READ, 1000);
  const auto hits = std::count(hit.begin(), hit.end(), '!');
  EXPECT_GT(hits, 200);
  EXPECT_LT(hits, 400);
  faults_.arm(Point::RADALT_READ, fault);
  EXPECT_EQ(next_calls(Point::RADALT_READ, 1000), hit);
  fault.seed = 8;
  faults_.arm(Point::RADALT_READ, fault);
  EXPECT_NE(next_calls(Point::RADALT_READ, 1000), hit);
}

TEST_F(FaultsTest, AnImprobableFaultHitsAsOftenAsItSays) {
  Fault fault{FaultKind::FAIL, 5, 1, 3};
  fault.probability = 50;
  faults_.arm(Point::RADALT_READ, fault);
  const std::string hit = next_calls(Point::RADALT_READ, 200);
  EXPECT_EQ(std::count(hit.begin(), hit.end(), '!'), 3);
}

TEST_F(FaultsTest, EachHitDrawsAnotherValue) {
  Fault fault{FaultKind::GARBAGE};
  fault.seed = 42;
  fault.draws = true;
  faults_.arm(Point::RADALT_READ, fault);
  const std::int32_t first = faults_.strike(Point::RADALT_READ).value;
  const std::int32_t second = faults_.strike(Point::RADALT_READ).value;
  EXPECT_NE(first, second);
  faults_.arm(Point::RADALT_READ, fault);
  EXPECT_EQ(faults_.strike(Point::RADALT_READ).value, first);
  EXPECT_EQ(faults_.strike(Point::RADALT_READ).value, second);
}

TEST_F(FaultsTest, ADrawnValueIsNeverTheRightOne) {
  Fault fault{FaultKind::GARBAGE, 27};
  EXPECT_EQ(simulator::model::wrong_value(fault, 27), 27);
  fault.draws = true;
  EXPECT_EQ(simulator::model::wrong_value(fault, 27), 26);
  EXPECT_EQ(simulator::model::wrong_value(fault, 28), 27);
}

TEST_F(FaultsTest, AWrongTextIsTheValueOrComesOfTheSeed) {
  Fault fault{FaultKind::GARBAGE, -40};
  EXPECT_EQ(simulator::model::wrong_text(fault), "-40\n");
  fault.draws = true;
  fault.seed = 1;
  const std::string text = simulator::model::wrong_text(fault);
  EXPECT_EQ(text.size(), 9U);
  EXPECT_EQ(simulator::model::wrong_text(fault), text);
  fault.seed = 2;
  EXPECT_NE(simulator::model::wrong_text(fault), text);
}

TEST_F(FaultsTest, HitsAreCountedBesidesCalls) {
  faults_.arm(Point::RADALT_READ, {FaultKind::FAIL, 5, 2, 2});
  next_calls(Point::RADALT_READ, 5);
  next_calls(Point::RADALT_WRITE, 3);
  EXPECT_EQ(faults_.calls(Point::RADALT_READ), 5U);
  EXPECT_EQ(faults_.hits(Point::RADALT_READ), 2U);
  EXPECT_EQ(faults_.hits(Point::RADALT_WRITE), 0U);
  faults_.forget_calls();
  EXPECT_EQ(faults_.hits(Point::RADALT_READ), 0U);
}

TEST_F(FaultsTest, AStuckPointHoldsTheLastValueDelivered) {
  faults_.hold(Point::I2C_READ, 26);
  faults_.delivered(Point::I2C_READ, 30);
  EXPECT_EQ(faults_.held(Point::I2C_READ), 26) << "nothing is stuck";
  faults_.arm(Point::I2C_READ, {FaultKind::STUCK, 0, 2});
  EXPECT_TRUE(faults_.holds(Point::I2C_READ));
  EXPECT_FALSE(faults_.holds(Point::RADALT_READ));
  faults_.delivered(Point::I2C_READ, 30);
  EXPECT_EQ(faults_.held(Point::I2C_READ), 30);
}

TEST_F(FaultsTest, AFaultAtAFileWatchesNoCrossings) {
  faults_.arm(Point::FILE_CELSIUS, {FaultKind::FAIL});
  EXPECT_FALSE(faults_.watch().any());
}

TEST_F(FaultsTest, RefusesParametersWithoutMeaning) {
  const auto refusal = [this](Point point, const Fault& fault) {
    try {
      faults_.arm(point, fault);
    } catch (const std::invalid_argument& error) {
      return std::string(error.what());
    }
    return std::string("armed");
  };
  EXPECT_EQ(refusal(Point::RADALT_READ, {FaultKind::FAIL, 0, 0}), "radalt.read: \"nth\" and \"every\" start at 1");
  EXPECT_EQ(refusal(Point::RADALT_READ, {FaultKind::FAIL, 0, 1, 1, 0}),
            "radalt.read: \"nth\" and \"every\" start at 1");
  EXPECT_EQ(refusal(Point::RADALT_READ, {FaultKind::FAIL, 0, 1, 1, 1, 101}),
            "radalt.read: \"probability\" is 1 to 100 per cent");
  EXPECT_EQ(refusal(Point::FILE_CELSIUS, {FaultKind::FAIL, 0, 2}),
            "file.celsius: a file has no \"nth\", \"times\", \"every\" or \"probability\"; its fault lasts while it is "
            "armed");
  EXPECT_FALSE(faults_.watch().any());
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
