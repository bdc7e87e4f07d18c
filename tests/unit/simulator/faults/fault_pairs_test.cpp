// Every pair of point and kind that the table of points admits bites and clears again. A new row of the table, or a new
// kind in a row, is tested without further ado; a new point needs a probe, unless it is a reply, a shell command or a
// file.

#include <gtest/gtest.h>

#include <chrono>

#include "simulator/settings/settings.h"
#include "tests/unit/simulator/faults/pairs_unit.h"
#include "tests/unit/simulator/faults/probe.h"

namespace fault_pairs {

std::unique_ptr<Probe> make_probe(PairsUnit& unit, simulator::model::Point point) {
  for (const auto make : {make_board_probe, make_power_supply_probe, make_framework_probe, make_service_probe,
                          make_command_probe, make_file_probe}) {
    if (auto probe = make(unit, point)) {
      return probe;
    }
  }
  return nullptr;
}

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << (outcome.failed ? "failed" : "succeeded");
  for (const std::string& each : outcome.delivered) {
    *stream << " " << each;
  }
}

namespace {

using simulator::model::FAULT_KINDS;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::PointRow;
using simulator::model::POINTS;
using simulator::settings::set_setting;
using simulator::settings::SettingError;

constexpr int GARBAGE = 77;
constexpr std::chrono::milliseconds SLOWNESS{20};

using Pair = std::pair<Point, FaultKind>;

std::vector<Pair> pairs(bool admitted) {
  std::vector<Pair> all;
  for (const PointRow& row : POINTS) {
    for (const auto& kind : FAULT_KINDS) {
      if (kind.key != FaultKind::NONE && row.kinds.has(kind.key) == admitted) {
        all.emplace_back(row.key, kind.key);
      }
    }
  }
  return all;
}

std::string name_of_pair(const testing::TestParamInfo<Pair>& instance) {
  std::string name = std::string(name_of(instance.param.first)) + "_" + std::string(name_of(instance.param.second));
  std::replace(name.begin(), name.end(), '.', '_');
  return name;
}

class FaultPairsTest : public testing::TestWithParam<Pair> {
protected:
  FaultPairsTest() {
    unit_.model().faults().disarm_all();
    unit_.model().faults().forget_calls();
    if (probe_) {
      probe_->set_value(1);
      usual_ = probe_->call(FaultKind::NONE);
    }
  }
  ~FaultPairsTest() override { unit_.model().faults().disarm_all(); }

  /// Arms the fault, for one call if the point has calls.
  void arm(const std::string& parameters = {}) {
    const std::string once = is_counted_ ? " times=1" : "";
    set_setting(unit_.model(), setting_, std::string(name_of(kind_)) + parameters + once);
  }
  void disarm() { set_setting(unit_.model(), setting_, "none"); }

  Outcome hit() {
    const Outcome outcome = probe_->call(kind_);
    EXPECT_EQ(unit_.model().faults().hits(point_), is_counted_ ? 1U : 0U);
    return outcome;
  }

  void expect_failure() {
    arm();
    const Outcome outcome = hit();
    EXPECT_TRUE(outcome.failed);
    EXPECT_NE(outcome.delivered.empty() ? "" : outcome.delivered[0],
              usual_.delivered.empty() ? "-" : usual_.delivered[0]);
  }

  void expect_slowness() {
    arm(" value=" + std::to_string(SLOWNESS.count()));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(hit(), usual_);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, SLOWNESS);
  }

  void expect_garbage() {
    arm(" value=" + std::to_string(GARBAGE));
    const Outcome outcome = hit();
    EXPECT_FALSE(outcome.failed);
    ASSERT_EQ(outcome.delivered.size(), usual_.delivered.size());
    EXPECT_EQ(outcome.delivered[0], probe_->text_of(GARBAGE));
    EXPECT_NE(outcome.delivered[0], usual_.delivered[0]);
    arm(" seed=5");
    EXPECT_NE(probe_->call(kind_).delivered[0], usual_.delivered[0]);
  }

  void expect_stuck() {
    arm();
    probe_->set_value(2);
    EXPECT_EQ(hit(), usual_);
    disarm();
    EXPECT_EQ(probe_->call(FaultKind::NONE).delivered[0], probe_->text_of(2));
    probe_->set_value(1);
  }

  void expect_no_reply() {
    arm();
    const auto running = probe_->start();
    if (!running) {
      const Outcome outcome = hit();
      EXPECT_FALSE(outcome.failed);
      EXPECT_EQ(outcome.delivered.size() + 1, usual_.delivered.size());
      return;
    }
    ASSERT_TRUE(services_test::comes_true([this] { return unit_.model().faults().hits(point_) == 1; }));
    EXPECT_EQ(probe_->call(FaultKind::NONE), usual_) << "another call";
    EXPECT_FALSE(running->has_ended());
  }

  void expect_twice() {
    arm();
    const Outcome outcome = hit();
    ASSERT_EQ(outcome.delivered.size(), usual_.delivered.size() + 1);
    EXPECT_EQ(outcome.delivered[0], usual_.delivered[0]);
    EXPECT_EQ(outcome.delivered[1], usual_.delivered[0]);
  }

  void expect_lateness() {
    arm(" value=" + std::to_string(SLOWNESS.count()));
    Outcome outcome = hit();
    std::reverse(outcome.delivered.begin(), outcome.delivered.end());
    EXPECT_EQ(outcome, usual_) << "overtaken";
  }

  void expect_bite() {
    switch (kind_) {
      case FaultKind::FAIL:
        return expect_failure();
      case FaultKind::NO_REPLY:
        return expect_no_reply();
      case FaultKind::LATE:
        return expect_lateness();
      case FaultKind::TWICE:
        return expect_twice();
      case FaultKind::SLOW:
        return expect_slowness();
      case FaultKind::GARBAGE:
        return expect_garbage();
      case FaultKind::STUCK:
        return expect_stuck();
      default:
        FAIL() << "a kind without test";
    }
  }

  PairsUnit& unit_ = PairsUnit::get();
  const Point point_ = GetParam().first;
  const FaultKind kind_ = GetParam().second;
  const std::string setting_ = "faults." + std::string(name_of(point_));
  const bool is_counted_ = row_of(row_of(point_).crossing).is_counted;
  const std::unique_ptr<Probe> probe_ = make_probe(unit_, point_);
  Outcome usual_;
};

TEST_P(FaultPairsTest, BitesAndClears) {
  ASSERT_NE(probe_, nullptr) << "a point without probe";
  if (point_ == Point::DDS_WRITE && HAS_WRITE_GUARD == 0) {
    GTEST_SKIP() << "this engine has no guard of writes";
  }
  ASSERT_FALSE(usual_.failed);
  expect_bite();
  const std::uint64_t hits = unit_.model().faults().hits(point_);
  disarm();
  EXPECT_EQ(probe_->call(FaultKind::NONE), usual_);
  EXPECT_EQ(unit_.model().faults().hits(point_), hits);
}

INSTANTIATE_TEST_SUITE_P(Table, FaultPairsTest, testing::ValuesIn(pairs(true)), name_of_pair);

TEST(OtherPairsTest, AreRefusedWithThoseThatAreAdmitted) {
  auto& model = PairsUnit::get().model();
  for (const auto& [point, kind] : pairs(false)) {
    const std::string setting = "faults." + std::string(name_of(point));
    if (!simulator::settings::find_setting(setting)) {
      continue;
    }
    try {
      set_setting(model, setting, std::string(name_of(kind)));
      ADD_FAILURE() << setting << " " << name_of(kind);
    } catch (const SettingError& error) {
      for (const auto& each : FAULT_KINDS) {
        const bool is_listed = error.expected.find("\"" + std::string(each.name) + "\"") != std::string::npos;
        EXPECT_EQ(is_listed, row_of(point).kinds.has(each.key)) << error.what();
      }
    }
    EXPECT_EQ(model.faults().armed_at(point).kind, FaultKind::NONE);
  }
}

}  // namespace
}  // namespace fault_pairs
