// The built library's exported symbols, and those that it expects from its host.

#include <gmock/gmock.h>

#include <sstream>

#include "tests/abi/tool_output.h"

namespace {

/// Demangled dynamic symbols, those that the library defines or those that it needs.
std::vector<std::string> dynamic_symbols(const std::string& which) {
  std::vector<std::string> found;
  for (const std::string& line : abi_test::lines_of("nm -DC " + which + " " + RADALT_HARDWARE_LIBRARY)) {
    std::istringstream words(line);
    std::string word;
    while (words >> word && word.size() != 1) {
    }
    std::string name;
    std::getline(words >> std::ws, name);
    found.push_back(name.substr(0, name.find('@')));
  }
  return found;
}

const std::string ATTRIBUTE_TEXT = "BASE_HARDWARE::attrib_enum_str_helper(";
const std::string TEXT = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";

TEST(Exports, ExactlyTheNamedSymbolsAreExported) {
  EXPECT_THAT(
      dynamic_symbols("--defined-only"),
      testing::UnorderedElementsAre(
          "semBatteryStatusIrq", "semBatteryTimeIrq", "semBatteryRunTimeIrq", "semExtVoltStatusIrq",
          "semPowerSupplyVerIrq", "semPowerSupplyTempIrq", "semBatteryTempIrq", "cover_closed", "Attr_EventMessage",
          "BatteryRelativeStateOfChargeResponse(int)", "SoftwareVersionNumberResponse(int)",
          "PowerSupplyTemperatureValueResponse(int)", "BatteryTemperatureResponse(int)",
          "BatteryAverageTimeToEmptyResponse(int)", "BatteryRunTimeToEmptyResponse(int)",
          ATTRIBUTE_TEXT + TEXT + ", " + TEXT + ")", ATTRIBUTE_TEXT + TEXT + ", int)", ATTRIBUTE_TEXT + TEXT + ")",
          // Each destructor appears twice: for complete objects and for bases.
          "BASE_HARDWARE::~BASE_HARDWARE()", "BASE_HARDWARE::~BASE_HARDWARE()",
          "Handheld_Hardware::~Handheld_Hardware()", "Handheld_Hardware::~Handheld_Hardware()", "HARDWARE::~HARDWARE()",
          "HARDWARE::~HARDWARE()", "vtable for BASE_HARDWARE", "vtable for Handheld_Hardware", "vtable for HARDWARE",
          "typeinfo for BASE_HARDWARE", "typeinfo for Handheld_Hardware", "typeinfo for HARDWARE",
          "typeinfo name for BASE_HARDWARE", "typeinfo name for Handheld_Hardware", "typeinfo name for HARDWARE"));
}

TEST(Exports, TheHostsPointerIsLeftToTheHost) {
  EXPECT_THAT(dynamic_symbols("--undefined-only"), testing::Contains("Hardware"));
}

}  // namespace
