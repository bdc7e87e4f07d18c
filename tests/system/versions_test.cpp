// The version list of the real library compared with the unit's values.

#include <signal.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::IsEmpty;

class VersionsTest : public testing::Test {
protected:
  /// Starts a host and asks it for the version list.
  json versions(const json& list_before = json::array()) {
    host_.emplace(unit_.start().host());
    const json answer = host_->call("GetVersionList", json::array({list_before}));
    EXPECT_EQ(answer["result"], 1);
    EXPECT_EQ(answer["versions"].size(), 10U);
    return answer["versions"];
  }

  /// The version of one row, counted from 1.
  std::string row(std::size_t number) { return versions().at(number - 1).at("version"); }

  SimulatedUnit unit_;
  std::optional<Host> host_;
};

TEST_F(VersionsTest, TheListShowsWhatTheUnitHolds) {
  EXPECT_EQ(versions(), json::parse(R"json([{"name":"RF Card ID","version":"88993 (5300)"},
                                        {"name":"RF Card Revision","version":"2"},
                                        {"name":"RF Firmware Version","version":"1.02.03 alpha"},
                                        {"name":"Digital Board Card ID","version":"92881"},
                                        {"name":"Digital Board Card Revision","version":"3"},
                                        {"name":"Digital Board Firmware Version","version":"2.05.13 "},
                                        {"name":"Slot 1 Actel PCI FPGA version","version":"1.2 rev3"},
                                        {"name":"Slot 1 Control Board Revision","version":"3"},
                                        {"name":"Slot 1 Actel JTAG CPLD version","version":"1.0 rev2"},
                                        {"name":"Power Supply Version","version":"1.02.03"}])json"));
  EXPECT_EQ(host_->err(), "");
  EXPECT_THAT(unit_.events(), IsEmpty());
}

TEST_F(VersionsTest, EarlierRowsGo) {
  EXPECT_EQ(versions(json::parse(R"json([{"name":"old","version":"row"}])json"))[0]["name"], "RF Card ID");
}

TEST_F(VersionsTest, WithoutTheFpgaFileTheDigitalFirmwareShows) {
  unit_.set("sysfs.FPGA_ver", nullptr);
  EXPECT_EQ(row(7), "2.05.13  ");
}

TEST_F(VersionsTest, AnEmptyFpgaFileCountsAsNone) {
  unit_.set("sysfs.FPGA_ver", "");
  EXPECT_EQ(row(7), "2.05.13  ");
}

TEST_F(VersionsTest, AnFpgaFileOfOneWordEndsWithABlank) {
  unit_.set("sysfs.FPGA_ver", "7\n");
  EXPECT_EQ(row(7), "7 ");
}

TEST_F(VersionsTest, WithoutTheCpldFileTheFpgaShowsWithItsSecondWordTwice) {
  unit_.set("sysfs.CPLD_ver", nullptr);
  EXPECT_EQ(row(9), "1.2 rev3 rev3");
}

TEST_F(VersionsTest, WithoutBothFilesTheFirmwareGathersBlanks) {
  unit_.set("sysfs.FPGA_ver", nullptr).set("sysfs.CPLD_ver", nullptr);
  EXPECT_EQ(row(9), "2.05.13   ");
}

TEST_F(VersionsTest, WithoutTheBoardRevisionFileTheDigitalRevisionShows) {
  unit_.set("sysfs.Board_rev", nullptr).set("board.digital.card_revision", 9);
  EXPECT_EQ(row(8), "9");
}

TEST_F(VersionsTest, AnRfBoardThatDoesNotAnswerShowsZeros) {
  unit_.set("board.rf.transfer_time", "never").recorded();
  const json list = versions();
  EXPECT_EQ(list[0]["version"], "0");
  EXPECT_EQ(list[1]["version"], "0");
  EXPECT_EQ(list[2]["version"], "0.00.00 ");
  EXPECT_EQ(list[3]["version"], "92881");
  // For each of the three: one request, a hundred reads of the pending bits, no read of the register.
  EXPECT_EQ(unit_.calls_of(Point::RADALT_WRITE), 3U);
  EXPECT_EQ(unit_.calls_of(Point::RADALT_READ), 303U);
}

TEST_F(VersionsTest, TheBoardIsLockedTwice) {
  unit_.recorded();
  versions();
  EXPECT_EQ(unit_.calls_of(Point::RADALT_LOCK_GET), 2U);
  EXPECT_EQ(unit_.calls_of(Point::RADALT_LOCK_PUT), 2U);
}

TEST_F(VersionsTest, ALockThatCannotBeTakenIsReportedAndTheListGoesOn) {
  unit_.fault(Point::RADALT_LOCK_GET, {FaultKind::FAIL, 11}).fault(Point::RADALT_LOCK_PUT, {FaultKind::FAIL, 1});
  EXPECT_EQ(versions()[0]["version"], "88993 (5300)");
  EXPECT_THAT(host_->out(), testing::EndsWith("SysLockfail 11\nSysUnlockfail 1\nSysLockfail 11\nSysUnlockfail 1\n"));
}

TEST_F(VersionsTest, AnotherProgramThatHoldsTheBoardIsWaitedForAndItsDeathGivesTheBoardBack) {
  host_.emplace(unit_.start().host());
  const Program holder = unit_.run({"lock_holder"});
  holder.wait_for("lock 0\n");
  unit_.recorded();
  OpenCall open = host_->begin("GetVersionList");
  ASSERT_TRUE(eventually([this] { return unit_.calls_of(Point::RADALT_LOCK_GET) == 1; }));
  EXPECT_FALSE(open.answered());
  EXPECT_EQ(unit_.calls_of(Point::RADALT_READ), 0U);
  holder.kill(SIGKILL);
  EXPECT_EQ(open.answer()["versions"][0]["version"], "88993 (5300)");
  EXPECT_EQ(host_->out().find("SysLockfail"), std::string::npos);
}

// The file is a pipe, which the list waits for. The writer says when the list has opened it too, and waits for its cue.
TEST_F(VersionsTest, AnotherProgramGetsTheBoardWhileAFileIsRead) {
  host_.emplace(unit_.start().host());
  const std::string path = "/sys/class/omappci/FPGA_ver";
  unit_.shell("rm " + path + "; mkfifo " + path);
  OpenCall open = host_->begin("GetVersionList");
  const Program writer = unit_.run(
      {"sh", "-c", "exec 3>" + path + "; echo open; until [ -e /tmp/cue ]; do sleep 0.01; done; echo 1.3 rev4 >&3"});
  writer.wait_for("open\n");
  unit_.run({"lock_holder"}).wait_for("lock 0\n");
  EXPECT_FALSE(open.answered());
  unit_.shell("touch /tmp/cue");
  EXPECT_EQ(open.answer()["versions"][6]["version"], "1.3 rev4");
}

TEST_F(VersionsTest, ATooShortPowerSupplyVersionIsMissing) {
  unit_.set("power_supply.software_version", 12);
  EXPECT_EQ(versions()[9], json::parse(R"json({"name":"Power Supply Version","version":""})json"));
  EXPECT_EQ(host_->err(), "HARDWARE::GetPowerSupplyVersion err\n");
  EXPECT_THAT(unit_.events(), ElementsAre(event("HARDWARE::GetVersionList()", "PSdriver Software Version is missing")));
}

TEST_F(VersionsTest, APowerSupplyThatFailsHasNoVersion) {
  unit_.fault(Point::GET_SOFTWARE_VERSION_NUMBER, {FaultKind::FAIL});
  EXPECT_EQ(versions()[9], json::parse(R"json({"name":"Power Supply Version","version":""})json"));
  EXPECT_EQ(host_->err(), "");
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::GetPowerSupplyVersion()",
                                                "Power Supply Driver Failure: Power Supply Version")));
}

TEST_F(VersionsTest, AnEventCarriesTheLocalTimeCountedAsUtc) {
  unit_.fault(Point::GET_SOFTWARE_VERSION_NUMBER, {FaultKind::FAIL}).start();
  constexpr long offset = 5L * 3600 + 1800;
  const long before = std::time(nullptr) + offset;
  unit_.host({}, {{"TZ", "EAST-5:30"}}).call("GetVersionList");
  const long after = std::time(nullptr) + offset;
  const json sent = json::parse(unit_.text("/run/unit/events.jsonl").value());
  EXPECT_THAT(sent["timestamp"].get<long>(), testing::AllOf(testing::Ge(before), testing::Le(after)));
}

// One value of the unit and its row.
struct Shown {
  std::string setting;
  json value;
  std::size_t row;
  std::string version;
};

void PrintTo(const Shown& shown, std::ostream* stream) {
  *stream << shown.setting << " " << shown.value << " shows \"" << shown.version << "\" in row " << shown.row;
}

class ShownVersionsTest : public VersionsTest, public testing::WithParamInterface<Shown> {};

TEST_P(ShownVersionsTest, ARowShowsItsValue) {
  unit_.set(GetParam().setting, GetParam().value);
  EXPECT_EQ(row(GetParam().row), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Rows, ShownVersionsTest,
                         testing::Values(Shown{"board.rf.card_id", 42, 1, "42 (5300)"},
                                         Shown{"board.rf.card_id", 139046, 1, "139046 (5300)"},
                                         Shown{"board.rf.card_id", 92880, 1, "92880 (5340)"},
                                         Shown{"board.rf.card_id", 139047, 1, "139047 (5340)"},
                                         Shown{"board.rf.card_id", 43, 1, "43"},
                                         Shown{"board.rf.card_id", 4294967295U, 1, "4294967295"},
                                         Shown{"board.rf.card_revision", 4294967295U, 2, "4294967295"},
                                         Shown{"board.rf.firmware", 0x01020300U, 3, "1.02.03 "},
                                         Shown{"board.rf.firmware", 0x6464640BU, 3, "99.99.99 beta"},
                                         Shown{"board.rf.firmware", 0xFFFFFFFFU, 3, "99.99.99 unreleased"},
                                         Shown{"board.rf.present", false, 1, "0"},
                                         Shown{"board.digital.card_id", 42, 4, "42"},
                                         Shown{"board.digital.firmware", 0x0A0B0C0CU, 6, "10.11.12 unreleased"},
                                         Shown{"power_supply.software_version", 105, 10, "1.05."},
                                         Shown{"power_supply.software_version", 123456789, 10, "1.23.45678"},
                                         Shown{"power_supply.software_version", 0, 10, ""},
                                         Shown{"power_supply.software_version", -5, 10, ""}));

}  // namespace
