// The order of the virtual operations, read from the relocations of the built library's table.

#include <cxxabi.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "tests/abi/tool_output.h"

namespace {

using abi_test::lines_of;

const char LIBRARY[] = RADALT_HARDWARE_LIBRARY;

struct Symbol {
  unsigned long address;
  unsigned long size;
};

std::string demangled(const std::string& name) {
  int status = 0;
  char* const text = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
  std::string result = status == 0 ? text : name;
  std::free(text);
  return result;
}

std::multimap<std::string, Symbol> symbols() {
  std::multimap<std::string, Symbol> found;
  for (const std::string& line : lines_of(std::string("readelf -sW ") + LIBRARY)) {
    std::istringstream words(line);
    std::string number, value, size, type, bind, visibility, section, name;
    if (!(words >> number >> value >> size >> type >> bind >> visibility >> section >> name)) {
      continue;
    }
    if (section == "UND" || number.back() != ':' || !std::isxdigit(value.front())) {
      continue;
    }
    found.insert({name, {std::strtoul(value.c_str(), nullptr, 16), std::strtoul(size.c_str(), nullptr, 0)}});
  }
  return found;
}

/// The names of one function: functions with identical code may share one address.
using Names = std::set<std::string>;

/// The symbols that the library's relocations store at each address.
std::map<unsigned long, Names> relocation_targets() {
  std::map<unsigned long, Names> names_at;
  for (const auto& [name, symbol] : symbols()) {
    names_at[symbol.address].insert(name);
  }
  std::map<unsigned long, Names> targets;
  for (const std::string& line : lines_of(std::string("readelf -rW ") + LIBRARY)) {
    std::istringstream words(line);
    std::string offset, info, type, target, name;
    if (!(words >> offset >> info >> type >> target) || !std::isxdigit(offset.front())) {
      continue;
    }
    const bool by_name = static_cast<bool>(words >> name);
    targets[std::strtoul(offset.c_str(), nullptr, 16)] =
        by_name ? Names{name} : names_at[std::strtoul(target.c_str(), nullptr, 16)];
  }
  return targets;
}

/// The operations in the slots of a class's table: after the offset to top and the typeinfo, one pointer each.
std::vector<Names> slots(const std::string& table) {
  const auto all = symbols();
  const auto found = all.find(table);
  if (found == all.end()) {
    throw std::runtime_error("no symbol " + table);
  }
  const auto targets = relocation_targets();
  std::vector<Names> operations;
  const auto [begin, size] = found->second;
  for (unsigned long at = begin + 2 * sizeof(void*); at < begin + size; at += sizeof(void*)) {
    Names operation;
    for (const std::string& name : targets.at(at)) {
      const std::string text = demangled(name);
      operation.insert(text.substr(0, text.find_first_of("([")));
    }
    operations.push_back(operation);
  }
  return operations;
}

const char* const OPERATIONS[] = {"HARDWARE::GetVersionList",
                                  "Handheld_Hardware::GetBacklight",
                                  "Handheld_Hardware::GetTemperature",
                                  "BASE_HARDWARE::Get_PowerDown_HomeButton",
                                  "BASE_HARDWARE::GetFanStatesList",
                                  "BASE_HARDWARE::GetFanState",
                                  "BASE_HARDWARE::SetFanState",
                                  "Handheld_Hardware::AdjustFanSpeeds",
                                  "Handheld_Hardware::shutdown",
                                  "Handheld_Hardware::GetBatteryChargeStatus",
                                  "Handheld_Hardware::GetChargerStatus",
                                  "Handheld_Hardware::StartDHCP",
                                  "Handheld_Hardware::SetupStaticIP",
                                  "Handheld_Hardware::NetworkOff",
                                  "Handheld_Hardware::GetMaxInterfaces",
                                  "BASE_HARDWARE::GetFansList",
                                  "BASE_HARDWARE::SetRefOscillator",
                                  "BASE_HARDWARE::AlarmAnnunciatorState",
                                  "BASE_HARDWARE::SetQM2760LoopBandwidth",
                                  "Handheld_Hardware::ReadBusVoltages",
                                  "BASE_HARDWARE::SetAutoTuneThreshold",
                                  "BASE_HARDWARE::SetAutoTuneChannelSpacing",
                                  "BASE_HARDWARE::SetAutoTuneStartFreq",
                                  "BASE_HARDWARE::SetAutoTuneStopFreq",
                                  "BASE_HARDWARE::CopyScreenSettings",
                                  "BASE_HARDWARE::CopyScripts",
                                  "BASE_HARDWARE::SetCurrentlyActive",
                                  "BASE_HARDWARE::SetRs232BaudRate",
                                  "BASE_HARDWARE::SetRs232Parity",
                                  "BASE_HARDWARE::SetRs232DataBits",
                                  "BASE_HARDWARE::SetRs232StopBits",
                                  "BASE_HARDWARE::SetRs232FlowControl",
                                  "BASE_HARDWARE::SetRs232Echo",
                                  "BASE_HARDWARE::SetCpuUsageAttr",
                                  "BASE_HARDWARE::SetTime",
                                  "BASE_HARDWARE::GetThreshold",
                                  "BASE_HARDWARE::GetStartFreq",
                                  "BASE_HARDWARE::GetStopFreq",
                                  "BASE_HARDWARE::GetBW",
                                  "Handheld_Hardware::PsTemperature",
                                  "Handheld_Hardware::BatteryTemperature",
                                  "Handheld_Hardware::Slot1MIC284Temperature",
                                  "Handheld_Hardware::BatteryPresent",
                                  "HARDWARE::i2c_command_str",
                                  "HARDWARE::write_hw",
                                  "HARDWARE::read_hw",
                                  "HARDWARE::rftemp",
                                  "HARDWARE::get_RFAdc",
                                  "HARDWARE::getDigitalBoardTemp"};

TEST(VirtualTable, HardwareHasThe49OperationsInTheirBindingOrder) {
  const auto found = slots("_ZTV8HARDWARE");
  ASSERT_EQ(found.size(), std::size(OPERATIONS));
  for (std::size_t slot = 0; slot < found.size(); ++slot) {
    EXPECT_THAT(found[slot], testing::Contains(OPERATIONS[slot])) << "slot " << slot + 1;
  }
}

TEST(VirtualTable, TheInterfaceHas43SlotsAndSevenOfThemArePure) {
  const auto operations = slots("_ZTV13BASE_HARDWARE");
  ASSERT_EQ(operations.size(), 43U);
  std::vector<std::size_t> pure;
  for (std::size_t slot = 0; slot < operations.size(); ++slot) {
    if (operations[slot].begin()->rfind("__cxa_pure_virtual", 0) == 0) {
      pure.push_back(slot + 1);
    }
  }
  EXPECT_THAT(pure, testing::ElementsAre(9, 10, 11, 12, 13, 14, 15));
}

TEST(VirtualTable, TheHandheldLayerAddsSixPureSlotsAndMakesTheVersionListPureAgain) {
  const auto operations = slots("_ZTV17Handheld_Hardware");
  ASSERT_EQ(operations.size(), 49U);
  std::vector<std::size_t> pure;
  for (std::size_t slot = 0; slot < operations.size(); ++slot) {
    if (operations[slot].begin()->rfind("__cxa_pure_virtual", 0) == 0) {
      pure.push_back(slot + 1);
    }
  }
  EXPECT_THAT(pure, testing::ElementsAre(1, 44, 45, 46, 47, 48, 49));
}

}  // namespace
