#include <sys/stat.h>

#include <fstream>
#include <future>

#include "tests/doubles/fixed_files.h"
#include "tests/unit/board/unit_under_test.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::put_file;
using doubles::remove_file;
using testing::ElementsAre;

const char FPGA_FILE[] = "/sys/class/omappci/FPGA_ver";
const char BOARD_FILE[] = "/sys/class/omappci/Board_rev";
const char CPLD_FILE[] = "/sys/bus/platform/devices/omap-jtag/CPLD_ver";

class VersionListTest : public UnitTest {
protected:
  VersionListTest() {
    put_file(FPGA_FILE, "1.2 rev3\n");
    put_file(BOARD_FILE, "6\n");
    put_file(CPLD_FILE, "0x11 2010-03-04\n");
    board_.holds(1, 0, 90001).holds(1, 4, 5).holds(1, 8, 0x02050D00);
    rf_board(139047, 7, 0x01020300);
    driver_.answers("GetSoftwareVersionNumber", 10203);
  }

  void rf_board(unsigned int identifier, unsigned int revision, unsigned int firmware) {
    board_.holds(1, 128, identifier).holds(1, 132, revision).holds(1, 136, firmware);
  }
  std::vector<VERSIONSDATA> list() {
    std::vector<VERSIONSDATA> rows;
    EXPECT_EQ(unit_->GetVersionList(rows), 1);
    return rows;
  }
  std::string version(const std::string& name) {
    std::string found = "(no row)";
    for (const VERSIONSDATA& row : list()) {
      if (row.name == name) {
        found = row.version;
      }
    }
    return found;
  }
};

TEST_F(VersionListTest, TheTenRowsStandInTheirOrder) {
  std::vector<std::string> rows;
  for (const VERSIONSDATA& row : list()) {
    rows.push_back(row.name + " = " + row.version);
  }
  EXPECT_THAT(rows, ElementsAre("RF Card ID = 139047 (5340)", "RF Card Revision = 7", "RF Firmware Version = 1.02.03 ",
                                "Digital Board Card ID = 90001", "Digital Board Card Revision = 5",
                                "Digital Board Firmware Version = 2.05.13 ", "Slot 1 Actel PCI FPGA version = 1.2 rev3",
                                "Slot 1 Control Board Revision = 6", "Slot 1 Actel JTAG CPLD version = 0x11 2010-03-04",
                                "Power Supply Version = 1.02.03"));
}

TEST_F(VersionListTest, PreviousContentsAreRemoved) {
  std::vector<VERSIONSDATA> rows(25, VERSIONSDATA{"old", "old"});
  EXPECT_EQ(unit_->GetVersionList(rows), 1);
  EXPECT_EQ(rows.size(), 10U);
  EXPECT_EQ(rows[0].name, "RF Card ID");
}

TEST_F(VersionListTest, TheLockIsHeldForEachBoardsThreeReadsAndNotForFilesOrPowerSupply) {
  list();
  EXPECT_THAT(calls().all(),
              ElementsAre("lock",                                         //
                          "write 1 252 128", "read 1 252", "read 1 128",  //
                          "write 1 252 132", "read 1 252", "read 1 132",  //
                          "write 1 252 136", "read 1 252", "read 1 136",  //
                          "unlock",                                       //
                          "lock", "read 1 0", "read 1 4", "read 1 8", "unlock", "GetSoftwareVersionNumber"));
}

class LockWhileReadingTest : public VersionListTest, public testing::WithParamInterface<const char*> {};

// The file is a pipe: opening it for writing returns once the list has opened it for reading, and the list waits for
// the text.
TEST_P(LockWhileReadingTest, TheBoardIsFreeWhileAFileIsRead) {
  remove_file(GetParam());
  ASSERT_EQ(mkfifo(GetParam(), 0600), 0);
  const std::future<void> listing = std::async(std::launch::async, [this] { list(); });
  std::ofstream file(GetParam());
  EXPECT_EQ(calls().count("lock"), 2U);
  EXPECT_EQ(calls().count("unlock"), 2U);
  EXPECT_EQ(calls().all().back(), "unlock");
  file << "1\n" << std::flush;
  file.close();
  listing.wait();
  EXPECT_EQ(calls().all().back(), "GetSoftwareVersionNumber");
  remove_file(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Files, LockWhileReadingTest, testing::Values(FPGA_FILE, BOARD_FILE, CPLD_FILE),
                         [](const auto& file) {
                           const std::string path = file.param;
                           return path.substr(path.rfind('/') + 1);
                         });

TEST_F(VersionListTest, ALockThatFailsIsReportedAndTheListIsFull) {
  board_.lock_fails(-35).unlock_fails(-1);
  const CapturedOutput output;
  EXPECT_EQ(list().size(), 10U);
  EXPECT_EQ(output.out(), "SysLockfail -35\nSysUnlockfail -1\nSysLockfail -35\nSysUnlockfail -1\n");
  EXPECT_EQ(output.err(), "");
}

TEST_F(VersionListTest, AnRfBoardThatDoesNotAnswerShowsZeros) {
  board_.transfer_never_ends();
  const CapturedOutput output;
  const std::vector<VERSIONSDATA> rows = list();
  ASSERT_EQ(rows.size(), 10U);
  EXPECT_EQ(rows[0].version, "0");
  EXPECT_EQ(rows[1].version, "0");
  EXPECT_EQ(rows[2].version, "0.00.00 ");
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(VersionListTest, APowerSupplyThatCannotBeAskedLeavesItsVersionEmptyAndSendsItsEvent) {
  driver_.fails("GetSoftwareVersionNumber");
  const std::vector<VERSIONSDATA> rows = list();
  ASSERT_EQ(rows.size(), 10U);
  EXPECT_EQ(rows[9].name, "Power Supply Version");
  EXPECT_EQ(rows[9].version, "");
  ASSERT_EQ(doubles::sent_events().size(), 1U);
  EXPECT_EQ(doubles::sent_events()[0].source, "Handheld_Hardware::GetPowerSupplyVersion()");
}

/// An RF card identifier and the text of its row.
struct Card {
  unsigned int identifier;
  const char* shown;
};

void PrintTo(const Card& card, std::ostream* stream) {
  *stream << card.identifier << " shows \"" << card.shown << '"';
}

class RfCardTest : public VersionListTest, public testing::WithParamInterface<Card> {};

TEST_P(RfCardTest, TheIdentifierCarriesItsModel) {
  rf_board(GetParam().identifier, 0, 0);
  EXPECT_EQ(version("RF Card ID"), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Models, RfCardTest,
                         testing::Values(Card{42, "42 (5300)"}, Card{88993, "88993 (5300)"},
                                         Card{139046, "139046 (5300)"}, Card{92880, "92880 (5340)"},
                                         Card{139047, "139047 (5340)"}, Card{43, "43"}, Card{0, "0"},
                                         Card{139048, "139048"}, Card{4294967295U, "4294967295"}),
                         [](const auto& card) { return "Identifier" + std::to_string(card.param.identifier); });

TEST_F(VersionListTest, TheDigitalBoardsIdentifierCarriesNoModel) {
  board_.holds(1, 0, 42);
  EXPECT_EQ(version("Digital Board Card ID"), "42");
}

TEST_F(VersionListTest, RevisionsAreUnsigned) {
  rf_board(0, 0xFFFFFFFF, 0);
  board_.holds(1, 4, 0x80000000);
  EXPECT_EQ(version("RF Card Revision"), "4294967295");
  EXPECT_EQ(version("Digital Board Card Revision"), "2147483648");
}

/// A firmware word and its text.
struct Firmware {
  unsigned int word;
  const char* text;
};

void PrintTo(const Firmware& firmware, std::ostream* stream) {
  *stream << "word " << firmware.word << " reads \"" << firmware.text << '"';
}

class FirmwareTest : public VersionListTest, public testing::WithParamInterface<Firmware> {};

TEST_P(FirmwareTest, ReadsTheSameOnBothBoards) {
  rf_board(0, 0, GetParam().word);
  board_.holds(1, 8, GetParam().word);
  EXPECT_EQ(version("RF Firmware Version"), GetParam().text);
  EXPECT_EQ(version("Digital Board Firmware Version"), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Words, FirmwareTest,
                         testing::Values(Firmware{0x01020300, "1.02.03 "}, Firmware{0x02050D00, "2.05.13 "},
                                         Firmware{0x0102030A, "1.02.03 alpha"}, Firmware{0x6464640B, "99.99.99 beta"},
                                         Firmware{0x0A0B0C0C, "10.11.12 unreleased"},
                                         Firmware{0x63636301, "99.99.99 unreleased"},
                                         Firmware{0xFFFFFFFF, "99.99.99 unreleased"}, Firmware{0x00000000, "0.00.00 "},
                                         Firmware{0x62616000, "98.97.96 "}),
                         [](const auto& firmware) { return "Word" + std::to_string(firmware.param.word); });

TEST_F(VersionListTest, ARaisedFirmwareTextDoesNotWidenTheNextOne) {
  rf_board(0, 0, 0x6464640C);
  board_.holds(1, 8, 0x01020300);
  EXPECT_EQ(version("Digital Board Firmware Version"), "1.02.03 ");
}

TEST_F(VersionListTest, TwoWordsOfTheFpgaFileAreJoinedByOneBlank) {
  put_file(FPGA_FILE, "\n  1.2 \t\n rev3 and more");
  EXPECT_EQ(version("Slot 1 Actel PCI FPGA version"), "1.2 rev3");
}

TEST_F(VersionListTest, ASingleWordInTheFpgaFileIsFollowedByOneBlank) {
  put_file(FPGA_FILE, "7");
  EXPECT_EQ(version("Slot 1 Actel PCI FPGA version"), "7 ");
  EXPECT_EQ(version("Slot 1 Actel PCI FPGA version"), "7 ") << "the second variable starts empty on every call";
}

TEST_F(VersionListTest, AMissingFpgaFileShowsTheDigitalFirmwareTextAndABlank) {
  remove_file(FPGA_FILE);
  EXPECT_EQ(version("Slot 1 Actel PCI FPGA version"), "2.05.13  ");
}

TEST_F(VersionListTest, AnEmptyFpgaFileShowsTheDigitalFirmwareTextAndABlank) {
  put_file(FPGA_FILE, "");
  EXPECT_EQ(version("Slot 1 Actel PCI FPGA version"), "2.05.13  ");
}

TEST_F(VersionListTest, AMissingBoardFileShowsTheDigitalBoardsRevision) {
  remove_file(BOARD_FILE);
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "5");
}

TEST_F(VersionListTest, AnEmptyBoardFileShowsTheDigitalBoardsRevision) {
  put_file(BOARD_FILE, "");
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "5");
}

TEST_F(VersionListTest, ABoardFileOfBlanksShowsTheDigitalBoardsRevision) {
  put_file(BOARD_FILE, " \n");
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "5");
}

TEST_F(VersionListTest, ABoardFileWithoutANumberShowsZero) {
  put_file(BOARD_FILE, "rev6\n");
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "0");
}

TEST_F(VersionListTest, ABoardFileBeyondThirtyTwoBitsShowsTheLargestNumber) {
  put_file(BOARD_FILE, "4294967296\n");
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "4294967295");
}

TEST_F(VersionListTest, ABoardFileWithANegativeNumberShowsItWrappedInThirtyTwoBits) {
  put_file(BOARD_FILE, "-5\n");
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "4294967291");
}

TEST_F(VersionListTest, ANumberFollowedByTextIsRead) {
  put_file(BOARD_FILE, "12b\n");
  EXPECT_EQ(version("Slot 1 Control Board Revision"), "12");
}

TEST_F(VersionListTest, AMissingCpldFileShowsTheFpgaRowAndItsSecondWordAgain) {
  remove_file(CPLD_FILE);
  EXPECT_EQ(version("Slot 1 Actel JTAG CPLD version"), "1.2 rev3 rev3");
}

TEST_F(VersionListTest, ASingleWordInTheCpldFileIsFollowedByTheFpgasSecondWord) {
  put_file(CPLD_FILE, "0x11\n");
  EXPECT_EQ(version("Slot 1 Actel JTAG CPLD version"), "0x11 rev3");
}

TEST_F(VersionListTest, WithNeitherFileTheFirmwareTextGoesThroughBothRows) {
  remove_file(FPGA_FILE);
  remove_file(CPLD_FILE);
  EXPECT_EQ(version("Slot 1 Actel JTAG CPLD version"), "2.05.13   ");
}

TEST_F(VersionListTest, WithoutAnyFileTheListIsFullAndSilent) {
  remove_file(FPGA_FILE);
  remove_file(BOARD_FILE);
  remove_file(CPLD_FILE);
  const CapturedOutput output;
  EXPECT_EQ(list().size(), 10U);
  EXPECT_EQ(output.out() + output.err(), "");
  EXPECT_TRUE(doubles::sent_events().empty());
}

}  // namespace
