#include <algorithm>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "board/hardware.h"

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

/// "1.02.03 alpha" of a firmware word; each number shows at most 99, and a released version ends with its blank.
/// `stream` is emptied first; its fill character is "0".
std::string firmware_text(std::ostringstream& stream, unsigned int word) {
  const auto field = [word](unsigned int shift) { return std::min((word >> shift) & 0xFFU, 99U); };
  stream.str("");
  stream << field(24) << "." << std::setw(2) << field(16) << "." << std::setw(2) << field(8) << " "
         << release_text(word & 0xFFU);
  return stream.str();
}

/// Reads two words of a file and joins them by a blank into `first`. A word that cannot be read keeps what its variable
/// held before.
void read_two_words(const char* path, std::string& first, std::string& second) {
  std::ifstream file(path);
  file >> first >> second;
  file.close();
  first += " " + second;
}

}  // namespace

int HARDWARE::GetVersionList(std::vector<VERSIONSDATA>& list) {
  list.clear();
  std::ostringstream stream;
  stream.fill('0');

  Lock();
  Board rf{};
  rf.identifier = Peek_RFregister(128);
  rf.revision = Peek_RFregister(132);
  rf.firmware = Peek_RFregister(136);
  UnLock();
  list.push_back({std::to_string(rf.identifier) + model_suffix(rf.identifier), "RF Card ID"});
  list.push_back({std::to_string(rf.revision), "RF Card Revision"});
  list.push_back({firmware_text(stream, rf.firmware), "RF Firmware Version"});

  Lock();
  Board digital{};
  digital.identifier = Peek(0);
  digital.revision = Peek(4);
  digital.firmware = Peek(8);
  UnLock();
  list.push_back({std::to_string(digital.identifier), "Digital Board Card ID"});
  list.push_back({std::to_string(digital.revision), "Digital Board Card Revision"});
  std::string text = firmware_text(stream, digital.firmware);
  list.push_back({text, "Digital Board Firmware Version"});

  // The working variables go from row to row on purpose: a missing file shows what they held before it.
  std::string second_word;
  read_two_words("/sys/class/omappci/FPGA_ver", text, second_word);
  list.push_back({text, "Slot 1 Actel PCI FPGA version"});
  std::ifstream board_revision("/sys/class/omappci/Board_rev");
  board_revision >> digital.revision;
  board_revision.close();
  list.push_back({std::to_string(digital.revision), "Slot 1 Control Board Revision"});
  read_two_words("/sys/bus/platform/devices/omap-jtag/CPLD_ver", text, second_word);
  list.push_back({text, "Slot 1 Actel JTAG CPLD version"});

  list.push_back(GetPowerSupplyVersion());
  return 1;
}
