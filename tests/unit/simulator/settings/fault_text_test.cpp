#include "simulator/settings/fault_text.h"

#include <gtest/gtest.h>

#include "simulator/settings/settings.h"
#include "simulator/settings/unit_file.h"
#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::settings::fault_of;
using simulator::settings::get_setting;
using simulator::settings::set_setting;
using simulator::settings::set_setting_from_text;
using simulator::settings::SettingError;
using simulator::settings::text_of;

class FaultSettingsTest : public simulator_test::ModelTest {
protected:
  std::string refusal(const std::string& name, const std::string& text) {
    try {
      set_setting(unit_, name, text);
    } catch (const SettingError& error) {
      return error.reason;
    }
    return "taken";
  }
};

TEST(FaultTextTest, AFaultIsShownWithWhatIsUnusualAboutIt) {
  EXPECT_EQ(text_of(Fault{}), "none");
  EXPECT_EQ(text_of({FaultKind::FAIL}), "fail");
  EXPECT_EQ(text_of({FaultKind::NO_REPLY, 0, 2}), "no_reply nth=2");
  EXPECT_EQ(text_of({FaultKind::LATE, 200, 3, 1}), "late value=200 nth=3 times=1");
  EXPECT_EQ(text_of({FaultKind::GARBAGE, -40, 1, 5}), "garbage value=-40 times=5");
  EXPECT_EQ(text_of({FaultKind::FAIL, 5, 2, 3, 4, 50, 6}), "fail value=5 nth=2 times=3 every=4 probability=50 seed=6");
}

TEST(FaultTextTest, WhatIsShownReadsBackAsItself) {
  for (const char* text :
       {"none", "fail", "fail value=13", "no_reply nth=2", "late value=3600000 nth=4294967295 times=1",
        "twice times=4294967295", "slow value=0", "garbage value=-2147483648", "stuck nth=2 every=3", "garbage seed=0",
        "garbage value=0 probability=99 seed=4294967295", "garbage probability=1 seed=7", "fail probability=50"}) {
    EXPECT_EQ(text_of(fault_of(Point::GET_BATTERY_TEMPERATURE, text)),
              std::string(text) == "slow value=0" ? "slow" : text);
  }
}

TEST(FaultTextTest, ParametersStandInAnyOrderAndMayBeHexadecimal) {
  const Fault fault = fault_of(Point::RADALT_READ, "  garbage  times=0x10 value=0xFFFFFFFF ");
  EXPECT_EQ(fault.kind, FaultKind::GARBAGE);
  EXPECT_EQ(fault.value, -1);
  EXPECT_EQ(fault.nth, 1U);
  EXPECT_EQ(fault.times, 16U);
}

TEST_F(FaultSettingsTest, ArmAndDisarmTheirPoint) {
  set_setting_from_text(unit_, "faults.radalt.read", "fail value=5 nth=2 times=1");
  const Fault armed = unit_.faults().armed_at(Point::RADALT_READ);
  EXPECT_EQ(armed.kind, FaultKind::FAIL);
  EXPECT_EQ(armed.value, 5);
  EXPECT_EQ(armed.nth, 2U);
  EXPECT_EQ(armed.times, 1U);
  EXPECT_EQ(get_setting(unit_, "faults.radalt.read"), "fail value=5 nth=2 times=1");
  EXPECT_TRUE(unit_.watched());
  set_setting_from_text(unit_, "faults.radalt.read", "none");
  EXPECT_EQ(get_setting(unit_, "faults.radalt.read"), "none");
  EXPECT_FALSE(unit_.watched());
}

TEST_F(FaultSettingsTest, AUnitFileArmsFaults) {
  const auto unit_file = simulator::settings::UnitFile::parse(
      R"({"faults": {"i2c_read": "fail", "psdriver": {"GetBatteryTemperature": "no_reply nth=2"}}})", "unit.json");
  auto unit = simulator::model::UnitModel::create(path_, unit_file);
  EXPECT_EQ(unit.cross(Point::I2C_READ, "{}").kind, FaultKind::FAIL);
  EXPECT_EQ(unit.cross(Point::GET_BATTERY_TEMPERATURE, "{}").kind, FaultKind::NONE);
  EXPECT_EQ(unit.cross(Point::GET_BATTERY_TEMPERATURE, "{}").kind, FaultKind::NO_REPLY);
}

TEST_F(FaultSettingsTest, AKindThatThePointDoesNotAdmitIsRefusedWithThoseThatItDoes) {
  EXPECT_EQ(refusal("faults.radalt.write", "twice"), "must be one of \"none\", \"fail\", \"slow\", not \"twice\"");
  EXPECT_EQ(refusal("faults.radalt.read", "late value=3"),
            "must be one of \"none\", \"fail\", \"slow\", \"garbage\", \"stuck\", not \"late value=3\"");
  EXPECT_EQ(refusal("faults.locker.take", ""), "must be one of \"none\", \"slow\", not \"\"");
  EXPECT_EQ(refusal("faults.psdriver.reply", "none"), "no such setting");
  EXPECT_THROW(set_setting(unit_, "faults.radalt.read", 5), SettingError);
  EXPECT_FALSE(unit_.watched());
}

TEST_F(FaultSettingsTest, AWrongParameterIsRefused) {
  const std::string name = "faults.psdriver.GetBatteryTemperature";
  EXPECT_EQ(refusal(name, "fail colour=3"), "\"fail\" has no parameter \"colour\"");
  EXPECT_EQ(refusal(name, "twice value=3"), "\"twice\" has no parameter \"value\"");
  EXPECT_EQ(refusal(name, "none nth=3"), "\"none\" has no parameter \"nth\"");
  EXPECT_EQ(refusal(name, "late value=-1"), "value must be a whole number from 0 to 3600000, not in \"value=-1\"");
  EXPECT_EQ(refusal(name, "late value=3600001"),
            "value must be a whole number from 0 to 3600000, not in \"value=3600001\"");
  EXPECT_EQ(refusal(name, "fail value"), "value must be a whole number from 0 to 2147483647, not in \"value\"");
  EXPECT_EQ(refusal(name, "fail value="), "value must be a whole number from 0 to 2147483647, not in \"value=\"");
  EXPECT_EQ(refusal(name, "fail nth=0"), "nth must be a whole number from 1 to 4294967295, not in \"nth=0\"");
  EXPECT_EQ(refusal(name, "fail times=1x"), "times must be a whole number from 1 to 4294967295, not in \"times=1x\"");
  EXPECT_EQ(refusal(name, "fail nth=1 nth=2"), "\"nth=2\" gives a parameter twice");
  EXPECT_EQ(refusal(name, "fail every=0"), "every must be a whole number from 1 to 4294967295, not in \"every=0\"");
  EXPECT_EQ(refusal(name, "fail probability=0"),
            "probability must be a whole number from 1 to 100, not in \"probability=0\"");
  EXPECT_EQ(refusal(name, "fail probability=101"),
            "probability must be a whole number from 1 to 100, not in \"probability=101\"");
  EXPECT_EQ(refusal(name, "garbage value=0x-5"),
            "value must be a whole number from -2147483648 to 4294967295, not in \"value=0x-5\"");
  EXPECT_EQ(refusal(name, "none seed=3"), "\"none\" has no parameter \"seed\"");
  EXPECT_EQ(refusal(name, "fail times=1 nth=2"), "taken");
}

TEST_F(FaultSettingsTest, AParameterWithoutEffectIsRefused) {
  const std::string name = "faults.psdriver.GetBatteryTemperature";
  EXPECT_EQ(refusal(name, "fail seed=3"), "\"seed\" needs \"probability\"");
  EXPECT_EQ(refusal(name, "garbage value=1 seed=3"), "\"seed\" needs \"probability\" or no \"value\"");
  EXPECT_EQ(refusal(name, "stuck value=1"), "\"stuck\" has no parameter \"value\"");
  EXPECT_EQ(refusal(name, "garbage seed=3"), "taken");
  EXPECT_EQ(refusal(name, "garbage value=1 seed=3 probability=5"), "taken");
  EXPECT_EQ(refusal("faults.dds.write", "fail value=1"), "\"fail\" has no parameter \"value\"");
  EXPECT_EQ(refusal("faults.shell.mount", "fail value=256"),
            "value must be a whole number from 0 to 255, not in \"value=256\"");
}

TEST_F(FaultSettingsTest, AFilesFaultHasNoCalls) {
  const std::string name = "faults.file.celsius";
  for (const std::string parameter : {"nth", "times", "every", "probability"}) {
    EXPECT_EQ(refusal(name, "fail " + parameter + "=2"), "\"fail\" of a file has no parameter \"" + parameter + "\"");
  }
  EXPECT_EQ(refusal(name, "fail seed=2"), "\"fail\" of a file has no parameter \"seed\"");
  EXPECT_EQ(refusal(name, "fail value=2"), "\"fail\" of a file has no parameter \"value\"");
  EXPECT_EQ(refusal(name, "slow"), "must be one of \"none\", \"fail\", \"garbage\", \"stuck\", not \"slow\"");
  EXPECT_EQ(refusal(name, "garbage seed=2"), "taken");
  EXPECT_EQ(get_setting(unit_, name), "garbage seed=2");
}

TEST_F(FaultSettingsTest, AControlCharacterIsRefused) {
  EXPECT_EQ(refusal("faults.radalt.read", "fail\nvalue=5"),
            "must be one of \"none\", \"fail\", \"slow\", \"garbage\", \"stuck\", not \"fail\\nvalue=5\"");
  EXPECT_EQ(refusal("faults.radalt.read", "fail \x7f=5"),
            "must be one of \"none\", \"fail\", \"slow\", \"garbage\", \"stuck\", not \"fail \\u007f=5\"");
}

TEST_F(FaultSettingsTest, AUnitFileArmsFaultsAfterTheValuesThatTheyHold) {
  const auto unit_file = simulator::settings::UnitFile::parse(
      R"({"faults": {"i2c_read": "stuck", "file": {"celsius": "stuck"}}, "sensors": {"mic284": 26},
          "sysfs": {"celsius": "38.5\n"}})",
      "unit.json");
  auto unit = simulator::model::UnitModel::create(path_, unit_file);
  EXPECT_EQ(unit.crossings().held(Point::I2C_READ), 26);
  set_setting(unit, "sysfs.celsius", "50\n");
  EXPECT_EQ(doubles::text_of(folder_ / "sys/class/hwmon/hwmon0/device/celsius"), "38.5\n");
  EXPECT_EQ(get_setting(unit, "sysfs.celsius"), "50\n");
}

}  // namespace
