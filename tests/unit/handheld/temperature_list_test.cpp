#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <limits>

#include "tests/doubles/fake_shell.h"
#include "tests/doubles/fixed_files.h"
#include "tests/unit/handheld/handheld_under_test.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::FakeShell;
using doubles::put_file;
using doubles::remove_file;
using doubles::sent_events;
using testing::ElementsAre;
using testing::IsEmpty;

const char MIC284_FILE[] = "/tmp/MIC284";
const char OMAP_FILE[] = "/sys/class/hwmon/hwmon0/device/celsius";
const char MIC284_COMMAND[] = "system /home/radalt/bin/i2c_read 3 0x48 0 > /tmp/MIC284";

using Rows = std::vector<std::string>;

class TemperatureListTest : public HandheldTest {
protected:
  TemperatureListTest() {
    remove_file(MIC284_FILE);
    put_file(OMAP_FILE, "46.5\n");
    driver_.answers("GetPowerSupplyTemperatureValue", 253).answers("GetBatteryTemperature", 31);
  }

  /// The list's rows, each as "<name> = <temperature>".
  Rows rows() {
    std::vector<TEMPERATUREDATA> list;
    EXPECT_EQ(unit_->GetTemperature(list), 1);
    Rows texts;
    for (const TEMPERATUREDATA& row : list) {
      std::ostringstream text;
      text << row.name << " = " << row.temperature;
      texts.push_back(text.str());
    }
    return texts;
  }
  std::string row(const std::string& name) {
    for (const std::string& text : rows()) {
      if (text.rfind(name + " = ", 0) == 0) {
        return text.substr(name.size() + 3);
      }
    }
    return "(no row)";
  }
  void tool_prints(const std::string& text) { tool_text_ = text; }

  std::string tool_text_ = "1a\n";
  bool tool_writes_ = true;
  int tool_status_ = 0;
  FakeShell shell_{[this](const std::string&) {
    if (tool_writes_) {
      put_file(MIC284_FILE, tool_text_);
    }
    return tool_status_;
  }};
};

TEST_F(TemperatureListTest, TheSixRowsStandInTheirOrder) {
  const CapturedOutput output;
  EXPECT_THAT(rows(), ElementsAre("RF Temperature = 41.5", "Power Supply Temperature = 25.3",
                                  "Battery Temperature = 31", "Slot 1 MIC284 Temperature = 26",
                                  "Slot 1 OMAP Temperature = 46.5", "Digital Board Temperature = 17.5"));
  EXPECT_THAT(sent_events(), IsEmpty());
  EXPECT_EQ(output.out() + output.err(), "");
}

TEST_F(TemperatureListTest, TheSourcesAreAskedInTheirOrderAndTheChargerIsNot) {
  rows();
  EXPECT_THAT(calls().all(), ElementsAre("rftemp", "GetPowerSupplyTemperatureValue", "GetBatteryTemperature",
                                         MIC284_COMMAND, "getDigitalBoardTemp 0.250000"));
}

TEST_F(TemperatureListTest, PreviousContentsAreRemoved) {
  std::vector<TEMPERATUREDATA> list(20, TEMPERATUREDATA{1, "old"});
  EXPECT_EQ(unit_->GetTemperature(list), 1);
  ASSERT_EQ(list.size(), 6U);
  EXPECT_EQ(list[0].name, "RF Temperature");
}

TEST_F(TemperatureListTest, TenthsOfTheSupplyAreDividedInSinglePrecision) {
  std::vector<TEMPERATUREDATA> list;
  unit_->GetTemperature(list);
  EXPECT_EQ(list[1].temperature, 253.0F / 10.0F);
}

TEST_F(TemperatureListTest, TemperaturesBelowZeroKeepTheirSign) {
  driver_.answers("GetPowerSupplyTemperatureValue", -5).answers("GetBatteryTemperature", -20);
  EXPECT_EQ(row("Power Supply Temperature"), "-0.5");
  EXPECT_EQ(row("Battery Temperature"), "-20");
}

TEST_F(TemperatureListTest, TheGettersReportTheListsValuesInHundredthsOfAKelvin) {
  rows();
  EXPECT_EQ(unit_->PsTemperature(), 253 * 10 + 27315);
  EXPECT_EQ(unit_->BatteryTemperature(), 31 * 100 + 27315);
  EXPECT_EQ(unit_->Slot1MIC284Temperature(), 26 * 100 + 27315);
}

TEST_F(TemperatureListTest, WithoutABatteryItsRowIsOffAndItsGetterZero) {
  rows();
  charge_status = 0x10;
  calls().clear();
  EXPECT_EQ(rows()[2], "Battery Temp Off (Temp Invalid!) = 0");
  EXPECT_EQ(unit_->BatteryTemperature(), 0);
  EXPECT_EQ(calls().count("GetBatteryTemperature"), 0U);
}

TEST_F(TemperatureListTest, AnyOtherStatusBitLeavesTheBatteryRow) {
  charge_status = ~0x10;
  EXPECT_EQ(row("Battery Temperature"), "31");
}

TEST_F(TemperatureListTest, ASupplyFailureIsOneEventAndTheListGoesOnWithoutItsRow) {
  rows();
  driver_.fails("GetPowerSupplyTemperatureValue");
  EXPECT_THAT(rows(), ElementsAre("RF Temperature = 41.5", "Battery Temperature = 31", "Slot 1 MIC284 Temperature = 26",
                                  "Slot 1 OMAP Temperature = 46.5", "Digital Board Temperature = 17.5"));
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::GetTemperature() Power Supply Temperature",
                                                       "Power Supply Driver Failure: Get Power Supply Temperature")));
  EXPECT_EQ(unit_->PsTemperature(), 0);
  EXPECT_EQ(unit_->BatteryTemperature(), 31 * 100 + 27315);
}

TEST_F(TemperatureListTest, ABatteryFailureIsOneEventAndTheListGoesOnWithoutItsRow) {
  rows();
  driver_.fails("GetBatteryTemperature");
  EXPECT_THAT(rows(),
              ElementsAre("RF Temperature = 41.5", "Power Supply Temperature = 25.3", "Slot 1 MIC284 Temperature = 26",
                          "Slot 1 OMAP Temperature = 46.5", "Digital Board Temperature = 17.5"));
  EXPECT_THAT(sent_events(), ElementsAre(failure_event("Handheld_Hardware::GetTemperature() Battery Temperature",
                                                       "Power Supply Driver Failure: Get Battery Temperature")));
  EXPECT_EQ(unit_->BatteryTemperature(), 0);
  EXPECT_EQ(unit_->PsTemperature(), 253 * 10 + 27315);
}

TEST_F(TemperatureListTest, AValueIsValidAgainAfterTheNextListThatCouldReadIt) {
  driver_.fails("GetPowerSupplyTemperatureValue").fails("GetBatteryTemperature");
  rows();
  rows();
  EXPECT_EQ(unit_->PsTemperature(), 253 * 10 + 27315);
  EXPECT_EQ(unit_->BatteryTemperature(), 31 * 100 + 27315);
}

TEST_F(TemperatureListTest, AnotherExceptionOfTheDriverPassesThrough) {
  driver_.runs_first("GetPowerSupplyTemperatureValue", [] { throw std::out_of_range("request"); });
  std::vector<TEMPERATUREDATA> list;
  EXPECT_THROW(unit_->GetTemperature(list), std::out_of_range);
  EXPECT_EQ(list.size(), 1U);
}

TEST_F(TemperatureListTest, AnExceptionOfTheRfBoardPassesThroughWithAnEmptyList) {
  unit_->rf_throws_ = true;
  std::vector<TEMPERATUREDATA> list(3, TEMPERATUREDATA{1, "old"});
  EXPECT_THROW(unit_->GetTemperature(list), std::out_of_range);
  EXPECT_THAT(list, IsEmpty());
}

TEST_F(TemperatureListTest, AnExceptionOfTheDigitalBoardPassesThroughWithAPartlyFilledList) {
  unit_->digital_throws_ = true;
  std::vector<TEMPERATUREDATA> list;
  EXPECT_THROW(unit_->GetTemperature(list), std::out_of_range);
  EXPECT_EQ(list.size(), 5U);
}

/// The text of the tool's file, and the degrees read from it.
struct Reading {
  const char* text;
  int degrees;
};

void PrintTo(const Reading& reading, std::ostream* stream) {
  *stream << testing::PrintToString(reading.text) << " is " << reading.degrees;
}

class Mic284Test : public TemperatureListTest, public testing::WithParamInterface<Reading> {};

TEST_P(Mic284Test, IsReadAsHexadecimalWithItsLowByteSigned) {
  tool_prints(GetParam().text);
  std::vector<TEMPERATUREDATA> list;
  unit_->GetTemperature(list);
  ASSERT_EQ(list.size(), 6U);
  EXPECT_EQ(list[3].name, "Slot 1 MIC284 Temperature");
  EXPECT_EQ(list[3].temperature, static_cast<float>(GetParam().degrees));
  if (GetParam().degrees > -274 && GetParam().degrees < 1000) {
    EXPECT_EQ(unit_->Slot1MIC284Temperature(), GetParam().degrees * 100 + 27315);
  }
}

INSTANTIATE_TEST_SUITE_P(Texts, Mic284Test,
                         testing::Values(Reading{"1a", 26}, Reading{"f6", -10}, Reading{"1f6", -10},
                                         Reading{"100", 256}, Reading{"F6\n", -10}, Reading{"0x1A\n", 26},
                                         Reading{"7f", 127}, Reading{"80", -128}, Reading{"ff", -1},
                                         Reading{"180", -128}, Reading{"", 0}, Reading{"\n1a", 0},
                                         Reading{"read failed", 0}, Reading{"  1a", 26}, Reading{"1a rest", 26},
                                         Reading{"1a\nf6\n", 26}, Reading{"-1", -1}, Reading{"7fffff00", 0x7fffff00},
                                         Reading{"ffffffff", -1}, Reading{"123456789abcdef0123", -1}));

TEST_F(TemperatureListTest, WithoutTheResultFileTheRowIsMissingAndTheGetterZero) {
  rows();
  remove_file(MIC284_FILE);
  tool_writes_ = false;
  EXPECT_THAT(rows(),
              ElementsAre("RF Temperature = 41.5", "Power Supply Temperature = 25.3", "Battery Temperature = 31",
                          "Slot 1 OMAP Temperature = 46.5", "Digital Board Temperature = 17.5"));
  EXPECT_EQ(unit_->Slot1MIC284Temperature(), 0);
  EXPECT_THAT(sent_events(), IsEmpty());
}

TEST_F(TemperatureListTest, AnOldResultFileIsReadAgainWhenTheCommandCannotRun) {
  put_file(MIC284_FILE, "1c\n");
  tool_writes_ = false;
  tool_status_ = -1;
  EXPECT_EQ(row("Slot 1 MIC284 Temperature"), "28");
  EXPECT_EQ(unit_->Slot1MIC284Temperature(), 28 * 100 + 27315);
}

TEST_F(TemperatureListTest, TheCommandsStatusIsNotLookedAt) {
  tool_status_ = 256;
  EXPECT_EQ(row("Slot 1 MIC284 Temperature"), "26");
}

/// During its lifetime, links the path to a file that can be read but that not even the superuser can truncate.
class UnchangeableFile {
public:
  UnchangeableFile(const char* path, const std::string& text)
      : path_(path), file_(memfd_create("unchangeable", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
    EXPECT_EQ(write(file_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    EXPECT_EQ(fcntl(file_, F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE), 0);
    const std::string real = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file_);
    EXPECT_EQ(symlink(real.c_str(), path), 0);
  }
  ~UnchangeableFile() {
    unlink(path_);
    close(file_);
  }
  UnchangeableFile(const UnchangeableFile&) = delete;
  UnchangeableFile& operator=(const UnchangeableFile&) = delete;

private:
  const char* path_;
  int file_;
};

/// The command runs in the real shell, with a tool that is a script.
class RealToolTest : public HandheldTest {
protected:
  RealToolTest() {
    remove_file(OMAP_FILE);
    remove_file(MIC284_FILE);
    unit_->tools_ = "/tmp/tools/";
  }
  static void install_tool(const std::string& script) {
    put_file("/tmp/tools/i2c_read", "#!/bin/sh\n" + script + "\n");
    chmod("/tmp/tools/i2c_read", 0755);
  }
  std::vector<TEMPERATUREDATA> list() {
    std::vector<TEMPERATUREDATA> rows;
    const CapturedOutput unheard;
    EXPECT_EQ(unit_->GetTemperature(rows), 1);
    return rows;
  }
};

TEST_F(RealToolTest, TheToolGetsBusDeviceAndRegisterAndItsOutputIsRead) {
  install_tool("echo \"$@\" > /tmp/arguments\necho 0x1c");
  EXPECT_EQ(list()[3].temperature, 28.0F);
  EXPECT_EQ(doubles::file_text("/tmp/arguments"), "3 0x48 0\n");
}

TEST_F(RealToolTest, AToolThatFailsLeavesAnEmptyFileWhichReadsZeroAndCountsAsValid) {
  put_file(MIC284_FILE, "1c\n");
  install_tool("exit 1");
  EXPECT_EQ(list()[3].name, "Slot 1 MIC284 Temperature");
  EXPECT_EQ(list()[3].temperature, 0.0F);
  EXPECT_EQ(unit_->Slot1MIC284Temperature(), 27315);
}

TEST_F(RealToolTest, AMissingToolReadsZeroToo) {
  remove_file("/tmp/tools/i2c_read");
  EXPECT_EQ(list()[3].temperature, 0.0F);
}

TEST_F(RealToolTest, AnOldResultFileThatTheShellCannotReplaceIsReadAgainAndCountsAsValid) {
  install_tool("echo 05");
  const UnchangeableFile old_result(MIC284_FILE, "1c\n");
  const std::vector<TEMPERATUREDATA> rows = list();
  EXPECT_EQ(rows[3].name, "Slot 1 MIC284 Temperature");
  EXPECT_EQ(rows[3].temperature, 28.0F);
  EXPECT_EQ(unit_->Slot1MIC284Temperature(), 28 * 100 + 27315);
}

TEST_F(TemperatureListTest, WithoutTheHardwareMonitorFileItsRowIsMissing) {
  remove_file(OMAP_FILE);
  EXPECT_EQ(rows().size(), 5U);
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "(no row)");
}

TEST_F(TemperatureListTest, AnEmptyMonitorFileRepeatsTheMic284Value) {
  put_file(OMAP_FILE, "");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "26");
}

TEST_F(TemperatureListTest, AMonitorFileOfBlanksRepeatsTheMic284Value) {
  put_file(OMAP_FILE, " \n");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "26");
}

TEST_F(TemperatureListTest, AMonitorFileWithoutANumberReadsZero) {
  put_file(OMAP_FILE, "hot\n");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "0");
}

TEST_F(TemperatureListTest, AMonitorNumberBeyondAFloatReadsTheLargestFloat) {
  put_file(OMAP_FILE, "1e99\n");
  std::vector<TEMPERATUREDATA> list;
  unit_->GetTemperature(list);
  EXPECT_EQ(list[4].temperature, std::numeric_limits<float>::max());
}

TEST_F(TemperatureListTest, AMonitorNumberBelowZeroKeepsItsSign) {
  put_file(OMAP_FILE, "-12.25");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "-12.25");
}

TEST_F(TemperatureListTest, WithoutAMic284RowAnEmptyMonitorFileRepeatsTheBatterysValue) {
  tool_writes_ = false;
  put_file(OMAP_FILE, "");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "31");
}

TEST_F(TemperatureListTest, WithoutMic284RowAndBatteryAnEmptyMonitorFileRepeatsTheZeroOfTheBatteryRow) {
  tool_writes_ = false;
  charge_status = 0x10;
  put_file(OMAP_FILE, "");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "0");
}

TEST_F(TemperatureListTest, AfterASupplyFailureAnEmptyMonitorFileRepeatsTheBatterysValue) {
  tool_writes_ = false;
  driver_.fails("GetPowerSupplyTemperatureValue");
  put_file(OMAP_FILE, "");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "31");
}

TEST_F(TemperatureListTest, AfterABatteryFailureAnEmptyMonitorFileRepeatsTheSupplysValue) {
  tool_writes_ = false;
  driver_.fails("GetBatteryTemperature");
  put_file(OMAP_FILE, "");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "25.3");
}

TEST_F(TemperatureListTest, AfterBothFailuresAnEmptyMonitorFileRepeatsTheRfBoardsValue) {
  tool_writes_ = false;
  driver_.fails("GetPowerSupplyTemperatureValue").fails("GetBatteryTemperature");
  put_file(OMAP_FILE, "");
  EXPECT_EQ(row("Slot 1 OMAP Temperature"), "41.5");
}

TEST_F(TemperatureListTest, WithFourRowsTheListIsAsShortAsItGets) {
  tool_writes_ = false;
  remove_file(OMAP_FILE);
  EXPECT_THAT(rows(), ElementsAre("RF Temperature = 41.5", "Power Supply Temperature = 25.3",
                                  "Battery Temperature = 31", "Digital Board Temperature = 17.5"));
}

TEST_F(TemperatureListTest, WithTheDriverFailingTwiceOnlyTheBoardsRowsAreLeft) {
  tool_writes_ = false;
  remove_file(OMAP_FILE);
  driver_.fails("GetPowerSupplyTemperatureValue").fails("GetBatteryTemperature");
  EXPECT_THAT(rows(), ElementsAre("RF Temperature = 41.5", "Digital Board Temperature = 17.5"));
  EXPECT_EQ(sent_events().size(), 2U);
}

}  // namespace
