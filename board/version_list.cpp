#include <algorithm>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "board/board_lock.h"
#include "handheld/board_registers.h"

using board::BoardLock;

namespace {

/// Identifier, revision and firmware word of a board.
struct Board {
  unsigned int identifier;
  unsigned int revision;
  unsigned int firmware;
};

/// Product model of an RF card, as the suffix of its identifier's text.
const char* model_suffix(unsigned int rf_identifier) {
  switch (rf_identifier) {
    case 42:
    case 88993:
    case 139046:
      return " (5300)";
    case 92880:
    case 139047:
      return " (5340)";
    default:
      return "";
  }
}

const char* release_text(unsigned int release_type) {
  switch (release_type) {
    case 0:
      return "";
    case 10:
      return "alpha";
    case 11:
      return "beta";
    default:
      return "unreleased";
  }
}

/// "1.02.03 alpha" of a firmware word; each number shows at most 99, and a released version ends with the blank.
std::string firmware_text(unsigned int word) {
  const auto field = [word](unsigned int shift) { return std::min((word >> shift) & 0xFFU, 99U); };
  std::ostringstream text;
  text << std::setfill('0') << field(24) << "." << std::setw(2) << field(16) << "." << std::setw(2) << field(8) << " "
       << release_text(word & 0xFFU);
  return text.str();
}

Board read_rf_board(HARDWARE& hardware) {
  const BoardLock lock(hardware);
  return {hardware.Peek_RFregister(handheld::RF_CARD_ID), hardware.Peek_RFregister(handheld::RF_CARD_REVISION),
          hardware.Peek_RFregister(handheld::RF_FIRMWARE)};
}

Board read_digital_board(HARDWARE& hardware) {
  const BoardLock lock(hardware);
  return {hardware.Peek(handheld::DIGITAL_CARD_ID), hardware.Peek(handheld::DIGITAL_CARD_REVISION),
          hardware.Peek(handheld::DIGITAL_FIRMWARE)};
}

/// Reads two words of a file and joins them by a blank into `first`. If a word cannot be read, its variable keeps its
/// previous value.
void read_two_words(const char* path, std::string& first, std::string& second) {
  std::ifstream file(path);
  file >> first >> second;
  first += " " + second;
}

/// Reads a number from a file with stream extraction: `number` is unchanged if the file is missing or empty, 0 for
/// other text, and wraps for a negative number.
void read_number(const char* path, unsigned int& number) {
  std::ifstream file(path);
  file >> number;
}

}  // namespace

int HARDWARE::GetVersionList(std::vector<VERSIONSDATA>& list) {
  list.clear();
  const Board rf = read_rf_board(*this);
  list.push_back({std::to_string(rf.identifier) + model_suffix(rf.identifier), "RF Card ID"});
  list.push_back({std::to_string(rf.revision), "RF Card Revision"});
  list.push_back({firmware_text(rf.firmware), "RF Firmware Version"});

  Board digital = read_digital_board(*this);
  list.push_back({std::to_string(digital.identifier), "Digital Board Card ID"});
  list.push_back({std::to_string(digital.revision), "Digital Board Card Revision"});
  std::string text = firmware_text(digital.firmware);
  list.push_back({text, "Digital Board Firmware Version"});

  // The working variables are reused between rows on purpose: if a file is missing, its row shows their previous value.
  std::string second_word;
  read_two_words("/sys/class/omappci/FPGA_ver", text, second_word);
  list.push_back({text, "Slot 1 Actel PCI FPGA version"});
  read_number("/sys/class/omappci/Board_rev", digital.revision);
  list.push_back({std::to_string(digital.revision), "Slot 1 Control Board Revision"});
  read_two_words("/sys/bus/platform/devices/omap-jtag/CPLD_ver", text, second_word);
  list.push_back({text, "Slot 1 Actel JTAG CPLD version"});

  list.push_back(GetPowerSupplyVersion());
  return 1;
}
