#include "simulator/settings/unit_file.h"

#include <gtest/gtest.h>

#include "simulator/settings/settings.h"
#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using simulator::model::UnitModel;
using simulator::settings::get_setting;
using simulator::settings::settings;
using simulator::settings::UnitFile;
using simulator::settings::UnitFileError;

/// The error message for a unit file with that text, called unit.json.
UnitFileError refusal_of(const std::string& text) {
  try {
    UnitFile::parse(text, "unit.json");
  } catch (const UnitFileError& error) {
    return error;
  }
  return {"", "", "taken"};
}

class UnitFileTest : public ::testing::Test {
protected:
  UnitModel unit_with(const std::string& text) {
    return UnitModel::create(folder_ / "run/unit/model", UnitFile::parse(text, "unit.json"));
  }

  doubles::TemporaryFolder folder_;
};

TEST_F(UnitFileTest, SetsTheValuesThatItHolds) {
  UnitModel unit = unit_with(R"({"board": {"handle": 9, "rf": {"transfer_time": "never", "adc_count": [5, 6, 7]},
    "register": {"2": {"16": "0xff"}}}, "sysfs": {"celsius": "41.0", "bl_power": null}})");
  EXPECT_EQ(unit.board().handle(), 9);
  EXPECT_EQ(unit.board().rf_transfer_time(), simulator::model::Board::NEVER);
  EXPECT_EQ(unit.board().adc_count(1), 6U);
  EXPECT_EQ(unit.board().adc_count(2), 7U);
  EXPECT_EQ(unit.board().adc_count(3), 0U);
  EXPECT_EQ(unit.board().read(2, 16), 0xFFU);
  EXPECT_EQ(get_setting(unit, "sysfs.celsius"), "41.0");
  EXPECT_EQ(get_setting(unit, "sysfs.bl_power"), nullptr);
}

TEST_F(UnitFileTest, LeavesOutWhatItDoesNotHold) {
  UnitModel unit = unit_with("{}");
  for (const auto& setting : settings()) {
    EXPECT_NO_THROW(get_setting(unit, setting.name));
  }
  EXPECT_EQ(get_setting(unit, "board.digital.card_id"), 0);
  EXPECT_EQ(get_setting(unit, "board.rf.present"), true);
  EXPECT_EQ(get_setting(unit, "sysfs.celsius"), nullptr);
}

TEST_F(UnitFileTest, AFileThatIsMissingIsRefused) {
  try {
    UnitFile::load(folder_ / "none.json");
    FAIL() << "loaded";
  } catch (const UnitFileError& error) {
    EXPECT_EQ(error.what(), (folder_ / "none.json") + ": cannot be read: No such file or directory");
    EXPECT_EQ(error.key, "");
  }
}

TEST_F(UnitFileTest, AFolderIsRefused) {
  try {
    UnitFile::load(folder_ / "");
    FAIL() << "loaded";
  } catch (const UnitFileError& error) {
    EXPECT_EQ(error.reason, "cannot be read: Is a directory");
  }
}

TEST_F(UnitFileTest, AFileIsReadFromDisk) {
  doubles::write_text(folder_ / "unit.json", R"({"sensors": {"mic284": "0x1a"}})");
  UnitModel unit = UnitModel::create(folder_ / "run/unit/model", UnitFile::load(folder_ / "unit.json"));
  EXPECT_EQ(unit.sensors().mic284(), 0x1AU);
}

TEST_F(UnitFileTest, AMalformedFileIsRefusedWithItsPlace) {
  const UnitFileError error = refusal_of("{\n  \"board\": {\n    \"handle\": }\n}\n");
  EXPECT_EQ(error.key, "");
  EXPECT_EQ(error.reason.substr(0, 17), "line 3, column 15");
  EXPECT_EQ(std::string(error.what()).substr(0, 28), "unit.json: line 3, column 15");
  EXPECT_EQ(refusal_of("").reason.substr(0, 16), "line 1, column 1");
  EXPECT_EQ(refusal_of("{} {}").reason.substr(0, 16), "line 1, column 4");
}

TEST_F(UnitFileTest, AnUnknownKeyIsRefusedByItsWholeName) {
  const UnitFileError error = refusal_of(R"({"board": {"digital": {"colour": 1}}})");
  EXPECT_STREQ(error.what(), "unit.json: board.digital.colour: no such setting");
  EXPECT_EQ(error.file, "unit.json");
  EXPECT_EQ(error.key, "board.digital.colour");
  EXPECT_EQ(error.reason, "no such setting");
  EXPECT_STREQ(refusal_of(R"({"boards": {}})").what(), "unit.json: boards: no such setting");
  EXPECT_STREQ(refusal_of(R"({"board": {"register": {"x": {"1": 2}}}})").what(),
               "unit.json: board.register.x: no such setting");
  EXPECT_STREQ(refusal_of(R"({"board": {"register": {"1": {"y": 2}}}})").what(),
               "unit.json: board.register.1.y: no such setting");
  EXPECT_STREQ(refusal_of(R"({"board": {"rf": {"adc_count": [1,2,3,4,5,6,7,8,9]}}})").what(),
               "unit.json: board.rf.adc_count.8: no such setting");
}

TEST_F(UnitFileTest, AnIllTypedValueIsRefused) {
  EXPECT_STREQ(refusal_of(R"({"board": {"handle": "3"}})").what(),
               "unit.json: board.handle: must be a whole number from 0 to 2147483647, not \"3\"");
  EXPECT_STREQ(refusal_of(R"({"board": {"handle": {"a": 1}}})").what(),
               "unit.json: board.handle: must be a whole number from 0 to 2147483647, not {\"a\":1}");
  EXPECT_STREQ(refusal_of(R"({"sysfs": {"celsius": 38.5}})").what(),
               "unit.json: sysfs.celsius: must be text of at most 4095 bytes or null, not 38.5");
  EXPECT_STREQ(refusal_of(R"({"board": 5})").what(), "unit.json: board: must hold settings, not 5");
}

TEST_F(UnitFileTest, AValueOutOfRangeIsRefused) {
  EXPECT_STREQ(refusal_of(R"({"sensors": {"i2c_read_status": 256}})").what(),
               "unit.json: sensors.i2c_read_status: must be a whole number from 0 to 255, not 256");
}

TEST_F(UnitFileTest, MoreRegistersThanThereIsRoomForAreRefused) {
  nlohmann::json file;
  for (int address = 0; address < 4000; ++address) {
    file["board"]["register"]["9"][std::to_string(address)] = 1;
  }
  EXPECT_NO_THROW(unit_with(file.dump()));
  file["board"]["register"]["9"]["4000"] = 1;
  EXPECT_STREQ(refusal_of(file.dump()).what(),
               "unit.json: board.register: holds 4001 registers; a unit file may hold 4000");
}

TEST_F(UnitFileTest, AKeyGivenTwiceIsRefused) {
  EXPECT_STREQ(refusal_of(R"({"board": {"handle": 1, "digital": {}, "handle": 2}})").what(),
               "unit.json: board.handle: given twice");
  EXPECT_STREQ(refusal_of(R"({"board": {}, "sysfs": {}, "board": {}})").what(), "unit.json: board: given twice");
}

TEST_F(UnitFileTest, ADocumentThatIsNoObjectIsRefused) {
  EXPECT_STREQ(refusal_of("[1]").what(), "unit.json: must hold one JSON object");
}

TEST_F(UnitFileTest, TheShippedFileHoldsEveryStartingValue) {
  UnitModel unit = UnitModel::create(folder_ / "run/unit/model", UnitFile::load(HANDHELD_UNIT_FILE));
  EXPECT_EQ(get_setting(unit, "board.rf.card_id"), 88993);
  EXPECT_EQ(get_setting(unit, "board.rf.adc_count.2"), 3318);
  EXPECT_EQ(get_setting(unit, "power_supply.temperature"), 253);
  EXPECT_EQ(get_setting(unit, "power_supply.battery_temperature"), 27);
  EXPECT_EQ(get_setting(unit, "power_supply.state_of_charge"), 57);
  EXPECT_EQ(get_setting(unit, "power_supply.charger_status"), 1);
  EXPECT_EQ(get_setting(unit, "power_supply.software_version"), 10203);
  EXPECT_EQ(get_setting(unit, "sensors.mic284"), 0x1A);
  EXPECT_EQ(get_setting(unit, "sysfs.FPGA_ver"), "1.2 rev3\n");
  EXPECT_EQ(get_setting(unit, "sysfs.Board_rev"), "3\n");
  EXPECT_EQ(get_setting(unit, "sysfs.CPLD_ver"), "1.0 rev2\n");
  EXPECT_EQ(get_setting(unit, "sysfs.celsius"), "38.5\n");
  EXPECT_EQ(get_setting(unit, "sysfs.max_brightness"), "255\n");
  EXPECT_EQ(get_setting(unit, "sysfs.brightness"), "100\n");
  EXPECT_EQ(get_setting(unit, "sysfs.bl_power"), "1\n");
}

}  // namespace
