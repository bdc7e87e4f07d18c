#include "simulator/model/call_record.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

#include <nlohmann/json.hpp>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using doubles::lines_of;
using nlohmann::json;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;

class CallRecordTest : public simulator_test::ModelTest {
protected:
  std::string file_ = folder_ / "run/unit/calls.jsonl";
};

TEST_F(CallRecordTest, ACrossingIsOneJsonLine) {
  unit_.record().start();
  unit_.cross(Point::RADALT_READ, R"({"space":1,"address":40})");
  const auto lines = lines_of(file_);
  ASSERT_EQ(lines.size(), 1U);
  const json line = json::parse(lines[0]);
  EXPECT_EQ(line.size(), 4U);
  EXPECT_EQ(line["at"], "radalt.read");
  EXPECT_EQ(line["pid"], ::getpid());
  EXPECT_EQ(line["args"], json::parse(R"({"space":1,"address":40})"));
  EXPECT_GT(line["t_ns"].get<std::int64_t>(), 0);
}

TEST_F(CallRecordTest, ThereIsNoRecordUnlessSwitchedOn) {
  unit_.cross(Point::RADALT_READ, "{}");
  EXPECT_FALSE(std::filesystem::exists(file_));
  unit_.record().start();
  unit_.record().stop();
  unit_.cross(Point::RADALT_READ, "{}");
  EXPECT_EQ(lines_of(file_).size(), 0U);
}

TEST_F(CallRecordTest, StartingAnewEmptiesTheRecord) {
  unit_.record().start();
  unit_.cross(Point::RADALT_READ, "{}");
  unit_.record().start();
  unit_.cross(Point::RADALT_WRITE, "{}");
  const auto lines = lines_of(file_);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(json::parse(lines[0])["at"], "radalt.write");
}

TEST_F(CallRecordTest, OtherProcessesWriteToTheSameRecord) {
  unit_.record().start();
  unit_.cross(Point::RADALT_READ, "{}");
  const pid_t child = ::fork();
  if (child == 0) {
    simulator::model::UnitModel::open(path_).cross(Point::EVENTS_SEND, "{}");
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
  const auto lines = lines_of(file_);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(json::parse(lines[1])["at"], "events.send");
  EXPECT_EQ(json::parse(lines[1])["pid"], child);
  EXPECT_GE(json::parse(lines[1])["t_ns"], json::parse(lines[0])["t_ns"]);
}

TEST_F(CallRecordTest, LinesOfSeveralThreadsAreNeverTorn) {
  unit_.record().start();
  const std::string args = json(std::string(500, 'x')).dump();
  const auto write = [&] {
    for (int line = 0; line < 200; ++line) {
      unit_.record().append("note", args);
    }
  };
  std::thread one(write);
  std::thread other(write);
  one.join();
  other.join();
  const auto lines = lines_of(file_);
  ASSERT_EQ(lines.size(), 400U);
  for (const std::string& line : lines) {
    ASSERT_EQ(json::parse(line)["args"].get<std::string>().size(), 500U);
  }
}

TEST_F(CallRecordTest, ARecordThatCannotBeWrittenSaysWhichFile) {
  std::filesystem::create_directory(file_);
  try {
    unit_.record().start();
    FAIL() << "started";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.what(), file_ + ": Is a directory");
  }
  EXPECT_FALSE(unit_.watched());
}

TEST_F(CallRecordTest, ACrossingIsCountedAndMeetsItsFault) {
  unit_.faults().arm(Point::GET_BATTERY_TEMPERATURE, {FaultKind::LATE, 30, 2, 1});
  EXPECT_TRUE(unit_.watched());
  EXPECT_EQ(unit_.cross(Point::GET_BATTERY_TEMPERATURE, "{}").kind, FaultKind::NONE);
  const Fault met = unit_.cross(Point::GET_BATTERY_TEMPERATURE, "{}");
  EXPECT_EQ(met.kind, FaultKind::LATE);
  EXPECT_EQ(met.value, 30);
  EXPECT_EQ(unit_.faults().calls(Point::GET_BATTERY_TEMPERATURE), 2U);
}

TEST_F(CallRecordTest, CountingAloneMakesTheUnitWatched) {
  EXPECT_FALSE(unit_.watched());
  unit_.count_calls(true);
  EXPECT_TRUE(unit_.watched());
  unit_.count_calls(false);
  EXPECT_FALSE(unit_.watched());
}

}  // namespace
