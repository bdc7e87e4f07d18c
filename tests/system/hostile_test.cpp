// Programs of a unit that try to break out, and units that lie: the machine, the control service and other units stay
// as they are.

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "tests/doubles/temporary_folder.h"
#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using control::client::ApiError;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

const char SECRET[] = "the machine's own\n";
const char BOARD_REV[] = "/sys/class/omappci/Board_rev";

/// A unit with a host, and a file of the machine that it must neither read nor write.
class HostileTest : public testing::Test {
protected:
  HostileTest() {
    doubles::write_text(victim_, SECRET);
    fs::permissions(victim_, fs::perms::all);
    fs::permissions(folder_.path(), fs::perms::all);
  }

  /// Replaces a path of the unit by a symbolic link to the file of the machine.
  void link_to_victim(const std::string& path) { unit_.shell("ln -sf " + victim_ + " " + path); }
  void expect_victim_untouched() const { EXPECT_EQ(doubles::text_of(victim_), SECRET); }
  /// The answer to a request, or the error's reason.
  static std::string answer(const SimulatedUnit& unit, const std::string& target) {
    try {
      return unit.client().get(target).dump();
    } catch (const ApiError& error) {
      return error.what();
    }
  }

  doubles::TemporaryFolder folder_;
  const std::string victim_ = folder_ / "victim";
  SimulatedUnit unit_;
};

TEST_F(HostileTest, ARecordThatLinksToTheMachineIsNotFollowedThere) {
  const Host host = unit_.start().host();
  link_to_victim("/run/unit/calls.jsonl");
  EXPECT_THAT(answer(unit_, "/v1/record"), Not(HasSubstr("own")));
  try {
    unit_.recorded();
    host.call("BatteryTemperature");
  } catch (const ApiError&) {
    // The record cannot be started; the unit has spoilt it.
  }
  expect_victim_untouched();
}

TEST_F(HostileTest, AnEventLogThatLinksToTheMachineIsNotFollowedThere) {
  unit_.start();
  link_to_victim("/run/unit/events.jsonl");
  EXPECT_THAT(answer(unit_, "/v1/eventlog"), Not(HasSubstr("own")));
  expect_victim_untouched();
}

TEST_F(HostileTest, ASysfsFileThatLinksToTheMachineIsNeitherReadNorWritten) {
  unit_.start();
  link_to_victim(BOARD_REV);
  EXPECT_EQ(unit_.setting("sysfs.Board_rev"), nullptr);
  unit_.set("sysfs.Board_rev", "9\n");
  EXPECT_EQ(unit_.setting("sysfs.Board_rev"), "9\n");
  expect_victim_untouched();
}

TEST_F(HostileTest, ALogOfTheUnitIsNoFileOfTheMachine) {
  unit_.start();
  EXPECT_THAT(unit_.shell("ls -l /proc/[0-9]*/fd"), Not(HasSubstr(unit_.found().folder.string())));
}

TEST_F(HostileTest, AModelThatIsReplacedSpoilsTheUnitsOwnAnswersOnly) {
  SimulatedUnit other;
  other.set("power_supply.state_of_charge", 22).start();
  unit_.start();
  unit_.shell("rm /run/unit/model; ln -s /proc/1/root/run/unit/model /run/unit/model");
  unit_.shell("head -c 400000 /dev/urandom > /run/unit/model || true");
  EXPECT_EQ(other.setting("power_supply.state_of_charge"), 22);
  EXPECT_EQ(unit_.client().get("/v1/unit").at("state"), "running");
}

TEST_F(HostileTest, AModelFullOfGarbageDoesNotHarmTheService) {
  SimulatedUnit other;
  other.start();
  unit_.start();
  unit_.shell("size=$(stat -c %s /run/unit/model); head -c $size /dev/urandom | dd of=/run/unit/model conv=notrunc");
  // Whatever the answer is: the service gives one, or the unit has ended.
  try {
    answer(unit_, "/v1/settings");
  } catch (const control::client::ConnectionError&) {
  }
  EXPECT_EQ(other.client().get("/v1/unit").at("state"), "running");
}

TEST_F(HostileTest, AForkBombMeetsTheLimit) {
  SimulatedUnit other;
  other.start();
  unit_.limited("processes", 60).start();
  const Program bomb = unit_.run({"sh", "-c", "bomb() { bomb | bomb & }; bomb; exec sleep 1000"});
  EXPECT_TRUE(eventually([&] { return bomb.err().find("fork") != std::string::npos; }));
  EXPECT_EQ(unit_.client().get("/v1/unit").at("state"), "running");
  EXPECT_EQ(other.setting("board.handle"), 3);
}

TEST_F(HostileTest, AFullDiskIsTheUnitsOwn) {
  unit_.limited("disk_mib", 4).start();
  const Ending ending = unit_.run_to_end({"sh", "-c", "head -c 9000000 /dev/zero > /tmp/full"});
  EXPECT_THAT(ending.err, HasSubstr("No space left on device"));
  EXPECT_EQ(unit_.setting("board.handle"), 3);
  EXPECT_THAT(unit_.run_to_end({"sh", "-c", "head -c 9000000 /dev/zero > /dev/shm/full"}).err,
              HasSubstr("No space left on device"));
  const Host host = unit_.host();
  EXPECT_EQ(host.call("GetMaxInterfaces")["result"], 1);
}

TEST_F(HostileTest, MemoryMeetsTheLimitWhereTheMachineGrantsOne) {
  unit_.limited("memory_mib", 96).start();
  if (unit_.client().get("/v1/unit").at("limits").at("memory_mib").is_null()) {
    GTEST_SKIP() << "this machine grants no control group";
  }
  EXPECT_THAT(unit_.run_to_end({"sh", "-c", "head -c 300000000 /dev/zero | tail > /dev/null"}).err,
              HasSubstr("Killed"));
  EXPECT_EQ(unit_.setting("board.handle"), 3);
}

TEST_F(HostileTest, ManyOpenFilesMeetTheLimit) {
  unit_.limited("open_files", 64).start();
  EXPECT_EQ(unit_.shell("ulimit -n"), "64\n");
}

TEST_F(HostileTest, WhatTheCallerHasOpenIsNotOpenInside) {
  const auto open_secret = [this] {
    dup2(open(victim_.c_str(), O_RDWR), 50);
    dup2(open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY), 5);
  };
  const Ending ending = unit_command({"run", "--without", "services", "--without", "network", "--", "sh", "-c",
                                      "ls -l /proc/[0-9]*/fd; cat /proc/[0-9]*/fd/50; ls /proc/[0-9]*/fd/5/.."},
                                     "", open_secret);
  EXPECT_THAT(ending.out, HasSubstr("/proc/1/fd:"));
  EXPECT_THAT(ending.out, Not(HasSubstr("victim")));
  EXPECT_THAT(ending.out, Not(HasSubstr(folder_.path().filename().string())));
}

TEST_F(HostileTest, TheServiceIsNotRoot) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "started by an ordinary user";
  }
  unit_.start();
  const int service = unit_.client().get("/v1/unit").at("process").at("service");
  std::ifstream status("/proc/" + std::to_string(service) + "/status");
  std::string text(std::istreambuf_iterator<char>(status), {});
  EXPECT_THAT(text, HasSubstr("Uid:\t65533\t65533\t65533\t65533\n"));
  EXPECT_THAT(text, HasSubstr("CapEff:\t0000000000000000\n"));
}

/// The processes of a unit that are seen outside.
std::vector<int> processes_of(const SimulatedUnit& unit) {
  const nlohmann::ordered_json process = unit.client().get("/v1/unit").at("process");
  return {process.at("supervisor"), process.at("service"), process.at("root")};
}

bool exists(int process) {
  std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
  std::string word;
  std::string state;
  stat >> word >> word >> state;
  return stat && state != "Z";
}

class UnitEndTest : public HostileTest {
protected:
  /// Every process of the unit, and its folder, are gone in the end.
  void expect_gone(const std::vector<int>& processes) const {
    for (const int process : processes) {
      EXPECT_TRUE(eventually([process] { return !exists(process); })) << process;
    }
    EXPECT_THAT(unit_command({"ps"}).out, Not(HasSubstr(unit_.found().name + " ")));
    EXPECT_FALSE(fs::exists(unit_.found().folder));
  }
};

TEST_F(UnitEndTest, AKilledSupervisorTakesEverythingWithIt) {
  unit_.with_services().start();
  const std::vector<int> processes = processes_of(unit_);
  kill(processes[0], SIGKILL);
  expect_gone(processes);
}

TEST_F(UnitEndTest, AKilledServiceTakesEverythingWithIt) {
  unit_.with_services().start();
  const std::vector<int> processes = processes_of(unit_);
  kill(processes[1], SIGKILL);
  expect_gone(processes);
}

TEST_F(UnitEndTest, AKilledRootTakesEverythingWithIt) {
  unit_.with_services().start();
  const std::vector<int> processes = processes_of(unit_);
  kill(processes[2], SIGKILL);
  expect_gone(processes);
}

TEST_F(UnitEndTest, AProgramThatHoldsWhatTheAgentHasOpenDoesNotDelayTheEnd) {
  unit_.start();
  const std::vector<int> processes = processes_of(unit_);
  unit_.shell("for each in /proc/1/fd/*; do sleep 1000 < $each > /dev/null 2>&1 & done; true");
  unit_.client().send("POST", "/v1/unit/stop", json::object());
  expect_gone(processes);
}

TEST_F(UnitEndTest, TheStartersEndIsTheUnitsEnd) {
  OutsideProgram run({built_program("unit"), "run", "--name", "starter-" + std::to_string(getpid()), "--json"});
  ASSERT_TRUE(eventually([&] { return run.out().find('\n') != std::string::npos; }));
  run.kill(SIGKILL);
  run.wait();
  EXPECT_TRUE(eventually(
      [] { return unit_command({"ps"}).out.find("starter-" + std::to_string(getpid()) + " ") == std::string::npos; }));
}

}  // namespace
