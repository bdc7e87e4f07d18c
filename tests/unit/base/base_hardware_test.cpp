#include <gmock/gmock.h>

#include <sstream>
#include <type_traits>

#include "tests/doubles/hexadecimal_streams.h"
#include "tests/unit/base/plain_hardware.h"
#include "varnok_readings.h"

namespace Varnok {
class EngineReadingString_i {};
class EngineReadingValueLong_i {};
}  // namespace Varnok

namespace {

using doubles::CapturedOutput;
using testing::ElementsAre;

static_assert(!std::is_copy_constructible_v<BASE_HARDWARE> && !std::is_copy_assignable_v<BASE_HARDWARE>);
static_assert(!std::is_copy_constructible_v<PlainHardware> && !std::is_copy_assignable_v<PlainHardware>);

class BaseHardwareTest : public testing::Test {
protected:
  PlainHardware unit_ = quiet_unit();
  BASE_HARDWARE& hardware_ = unit_;
  CapturedOutput output_;

  void expect_error_line(const std::string& line) {
    EXPECT_EQ(output_.err(), line + "\n");
    EXPECT_EQ(output_.out(), "");
  }
  void expect_output_line(const std::string& line) {
    EXPECT_EQ(output_.out(), line + "\n");
    EXPECT_EQ(output_.err(), "");
  }
  void expect_silence() {
    EXPECT_EQ(output_.out(), "");
    EXPECT_EQ(output_.err(), "");
  }
};

TEST_F(BaseHardwareTest, GetVersionListNamesItselfGetVersionAndLeavesTheListAlone) {
  std::vector<VERSIONSDATA> list{{"1.2", "RF Card ID"}};
  EXPECT_EQ(hardware_.GetVersionList(list), 0);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].version, "1.2");
  EXPECT_EQ(list[0].name, "RF Card ID");
  expect_error_line("BASE_HARDWARE::GetVersion err");
}

TEST_F(BaseHardwareTest, GetBacklightLeavesTheLevelAlone) {
  int level = 77;
  EXPECT_EQ(hardware_.GetBacklight(level), 0);
  EXPECT_EQ(level, 77);
  expect_error_line("BASE_HARDWARE::GetBacklight err");
}

TEST_F(BaseHardwareTest, GetTemperatureLeavesTheListAlone) {
  std::vector<TEMPERATUREDATA> list{{21.5F, "Battery Temperature"}};
  EXPECT_EQ(hardware_.GetTemperature(list), 0);
  EXPECT_EQ(list.size(), 1U);
  expect_error_line("BASE_HARDWARE::GetTemperature err");
}

TEST_F(BaseHardwareTest, GetPowerDownHomeButtonLeavesBothTextsAlone) {
  std::string power_down = "p";
  std::string home_button = "h";
  hardware_.Get_PowerDown_HomeButton(power_down, home_button);
  EXPECT_EQ(power_down, "p");
  EXPECT_EQ(home_button, "h");
  expect_error_line("BASE_HARDWARE::Get_PowerDown_HomeButton err");
}

TEST_F(BaseHardwareTest, SetRefOscillatorPrintsItsArgumentInDecimal) {
  hardware_.SetRefOscillator(-12);
  expect_error_line("BASE_HARDWARE::SetRefOscillator err -12");
}

TEST_F(BaseHardwareTest, SetQm2760LoopBandwidthPrintsItsArgumentInDecimal) {
  hardware_.SetQM2760LoopBandwidth(255);
  expect_error_line("BASE_HARDWARE::SetQM2760LoopBandwidth err 255");
}

TEST_F(BaseHardwareTest, AlarmAnnunciatorStateOnPrintsOneOnStandardOutput) {
  hardware_.AlarmAnnunciatorState(true);
  expect_output_line("BASE_HARDWARE::AlarmAnnunciatorState : 1");
}

TEST_F(BaseHardwareTest, AlarmAnnunciatorStateOffPrintsZeroOnStandardOutput) {
  hardware_.AlarmAnnunciatorState(false);
  expect_output_line("BASE_HARDWARE::AlarmAnnunciatorState : 0");
}

TEST_F(BaseHardwareTest, NumbersAreDecimalWhateverTheHostHasLeftOnTheStreams) {
  const doubles::HexadecimalStreams left;
  hardware_.SetRefOscillator(-12);
  hardware_.SetQM2760LoopBandwidth(255);
  hardware_.AlarmAnnunciatorState(true);
  EXPECT_EQ(output_.err(),
            "BASE_HARDWARE::SetRefOscillator err -12\n"
            "BASE_HARDWARE::SetQM2760LoopBandwidth err 255\n");
  EXPECT_EQ(output_.out(), "BASE_HARDWARE::AlarmAnnunciatorState : 1\n");
}

TEST_F(BaseHardwareTest, ReadBusVoltagesEndsItsTextWithABlank) {
  hardware_.ReadBusVoltages();
  expect_error_line("BASE_HARDWARE::ReadBusVoltages err ");
}

TEST_F(BaseHardwareTest, SetAutoTuneThresholdPrintsItsValue) {
  hardware_.SetAutoTuneThreshold(-0.25);
  expect_error_line("BASE_HARDWARE::SetAutoTuneThreshold err -0.25");
}

TEST_F(BaseHardwareTest, SetAutoTuneChannelSpacingPrintsItsValueAsStreamsDo) {
  hardware_.SetAutoTuneChannelSpacing(12500000.0);
  expect_error_line("BASE_HARDWARE::SetAutoTuneChannelSpacing err 1.25e+07");
}

TEST_F(BaseHardwareTest, SetAutoTuneStartFreqPrintsItsValueWithSixDigits) {
  hardware_.SetAutoTuneStartFreq(4.23456789);
  expect_error_line("BASE_HARDWARE::SetAutoTuneStartFreq err 4.23457");
}

TEST_F(BaseHardwareTest, SetAutoTuneStopFreqPrintsItsValueRightAfterTheText) {
  hardware_.SetAutoTuneStopFreq(1.5);
  expect_error_line("BASE_HARDWARE::SetAutoTuneStopFreq err 1.5");
}

TEST_F(BaseHardwareTest, CopyScreenSettingsPrintsNeitherPathNorDirection) {
  Varnok::EngineReadingString_i status;
  hardware_.CopyScreenSettings("/media/usb", true, status);
  expect_error_line("BASE_HARDWARE::CopyScreenSettings err ");
}

TEST_F(BaseHardwareTest, CopyScriptsPrintsNeitherPathNorDirection) {
  Varnok::EngineReadingString_i status;
  hardware_.CopyScripts("/media/usb", false, status);
  expect_error_line("BASE_HARDWARE::CopyScripts err ");
}

TEST_F(BaseHardwareTest, SetCpuUsageAttrWithANullPointerDoesNothing) {
  hardware_.SetCpuUsageAttr(nullptr);
  expect_silence();
}

TEST_F(BaseHardwareTest, SetCpuUsageAttrWithAReadingDoesNothing) {
  Varnok::EngineReadingValueLong_i usage;
  hardware_.SetCpuUsageAttr(&usage);
  expect_silence();
}

TEST_F(BaseHardwareTest, SetTimeDoesNothing) {
  hardware_.SetTime();
  expect_silence();
}

TEST_F(BaseHardwareTest, TheFourTuningQueriesReturnExactlyZeroAndPrintNothing) {
  EXPECT_EQ(hardware_.GetThreshold(), 0.0);
  EXPECT_EQ(hardware_.GetStartFreq(), 0.0);
  EXPECT_EQ(hardware_.GetStopFreq(), 0.0);
  EXPECT_EQ(hardware_.GetBW(), 0.0);
  expect_silence();
}

TEST_F(BaseHardwareTest, PsTemperatureSaysSoOnStandardOutput) {
  EXPECT_EQ(hardware_.PsTemperature(), 0);
  expect_output_line("BASE_HARDWARE::PsTemperature");
}

TEST_F(BaseHardwareTest, BatteryTemperatureSaysSoOnStandardOutput) {
  EXPECT_EQ(hardware_.BatteryTemperature(), 0);
  expect_output_line("BASE_HARDWARE::BatteryTemperature");
}

TEST_F(BaseHardwareTest, Slot1Mic284TemperatureSaysSoOnStandardOutput) {
  EXPECT_EQ(hardware_.Slot1MIC284Temperature(), 0);
  expect_output_line("BASE_HARDWARE::Slot1MIC284Temperature");
}

TEST_F(BaseHardwareTest, BatteryPresentSaysSoOnStandardOutput) {
  EXPECT_EQ(hardware_.BatteryPresent(), 0);
  expect_output_line("BASE_HARDWARE::BatteryPresent");
}

struct Setter {
  const char* line;
  void (BASE_HARDWARE::*set)(int);
};

void PrintTo(const Setter& setter, std::ostream* stream) {
  *stream << '"' << setter.line << '"';
}

class BaseHardwareSetterTest : public BaseHardwareTest, public testing::WithParamInterface<Setter> {};

TEST_P(BaseHardwareSetterTest, PrintsItsLineWithoutItsArgument) {
  (hardware_.*GetParam().set)(9600);
  expect_error_line(GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(
    AllUnits, BaseHardwareSetterTest,
    testing::Values(Setter{"BASE_HARDWARE::SetCurrentlyActive err ", &BASE_HARDWARE::SetCurrentlyActive},
                    Setter{"BASE_HARDWARE::SetRs232BaudRate err ", &BASE_HARDWARE::SetRs232BaudRate},
                    Setter{"BASE_HARDWARE::SetRs232Parity err ", &BASE_HARDWARE::SetRs232Parity},
                    Setter{"BASE_HARDWARE::SetRs232DataBits err ", &BASE_HARDWARE::SetRs232DataBits},
                    Setter{"BASE_HARDWARE::SetRs232StopBits err ", &BASE_HARDWARE::SetRs232StopBits},
                    Setter{"BASE_HARDWARE::SetRs232FlowControl err ", &BASE_HARDWARE::SetRs232FlowControl},
                    Setter{"BASE_HARDWARE::SetRs232Echo err ", &BASE_HARDWARE::SetRs232Echo}),
    [](const auto& setter) {
      const std::string line = setter.param.line;
      return line.substr(15, line.find(' ') - 15);
    });

TEST(BaseHardwareStreamTest, OnlyAStreamThatCannotWriteLetsAnExceptionOut) {
  PlainHardware unit = quiet_unit();
  const CapturedOutput output;
  std::cerr.exceptions(std::ios::badbit);
  std::streambuf* const buffer = std::cerr.rdbuf();
  EXPECT_THROW(
      {
        std::cerr.rdbuf(nullptr);
        unit.SetRs232Echo(1);
      },
      std::ios_base::failure);
  std::cerr.exceptions(std::ios::goodbit);
  std::cerr.rdbuf(buffer);
  unit.SetRs232Echo(1);
  EXPECT_EQ(output.err(), "BASE_HARDWARE::SetRs232Echo err \n");
}

}  // namespace
