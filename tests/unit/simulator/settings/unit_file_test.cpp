#include "simulator/settings/unit_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

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
               "unit.json: board.rf.adc_count.8: no such setting; did you mean \"board.rf.adc_count.0\", "
               "\"board.rf.adc_count.1\" or \"board.rf.adc_count.2\"?");
}

TEST_F(UnitFileTest, AnIllTypedValueIsRefused) {
  EXPECT_STREQ(refusal_of(R"({"board": {"handle": "3"}})").what(),
               "unit.json: board.handle: must be a whole number from 0 to 2147483647, not \"3\"");
  EXPECT_STREQ(refusal_of(R"({"board": {"handle": {"a": 1}}})").what(),
               "unit.json: board.handle: must be a whole number from 0 to 2147483647, not {\"a\":1}");
  EXPECT_STREQ(
      refusal_of(R"({"sysfs": {"celsius": 38.5}})").what(),
      "unit.json: sysfs.celsius: must be UTF-8 text of at most 4095 bytes, without control characters but tabs "
      "and line ends, or null, not 38.5");
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

TEST_F(UnitFileTest, ASettingGivenInTwoSpellingsIsRefused) {
  EXPECT_STREQ(refusal_of(R"({"board.handle": 1, "board": {"handle": 2}})").what(),
               "unit.json: board.handle: given twice");
  EXPECT_STREQ(refusal_of(R"({"board": {"rf": {"adc_count": [1, 2]}}, "board.rf.adc_count": {"1": 5}})").what(),
               "unit.json: board.rf.adc_count.1: given twice");
  EXPECT_STREQ(refusal_of(R"({"board": {"register": {"2": {"5": 1, "05": 2}}}})").what(),
               "unit.json: board.register.2.05: no such setting; did you mean \"board.register.2.5\"?");
  EXPECT_STREQ(refusal_of(R"({"board": {"register": {"02": {"5": 1}}}})").what(),
               "unit.json: board.register.02: no such setting");
  EXPECT_STREQ(refusal_of(R"({"board": {"register": [{"5": 1}]}, "board.register.0.5": 2})").what(),
               "unit.json: board.register.0.5: given twice");
  EXPECT_STREQ(refusal_of(R"({"board": {"digital": {"card_id": 1}, "register": {"1": {"0": 2}}}})").what(),
               "unit.json: board.digital.card_id: given twice");
}

TEST_F(UnitFileTest, BytesThatAreNoTextAreRefusedWithTheirPlace) {
  EXPECT_STREQ(refusal_of(std::string("{}\0{", 4)).what(), "unit.json: line 1, column 3: NUL byte");
  EXPECT_STREQ(refusal_of(std::string("{\n \"a\0b\": 1}", 12)).what(), "unit.json: line 2, column 4: NUL byte");
  EXPECT_STREQ(refusal_of("{\n \"a\xff\": 1}").what(), "unit.json: line 2, column 4: byte that is not UTF-8");
  EXPECT_STREQ(refusal_of("{\"a\": 1} trailing").what(),
               "unit.json: line 1, column 12: syntax error while parsing value - invalid literal; last read: '1} tra'; "
               "expected end of input");
  EXPECT_STREQ(refusal_of("{\"board\": {\"handle\": 1e999}}").what(),
               "unit.json: line 1, column 22: number too large: 1e999");
}

TEST_F(UnitFileTest, NestingIsBounded) {
  const std::string deep = std::string(100'000, '[');
  EXPECT_STREQ(refusal_of(deep).what(), "unit.json: line 1, column 65: nested more than 64 deep");
  std::string objects;
  for (int level = 0; level < 100'000; ++level) {
    objects += "{\"board\":";
  }
  EXPECT_STREQ(refusal_of(objects).what(), "unit.json: line 1, column 577: nested more than 64 deep");
  EXPECT_STREQ(refusal_of("{\"sysfs\": {\"celsius\": \"" + deep.substr(0, 4000) + "\"}}").what(), ": taken");
  EXPECT_EQ(refusal_of("{\"board\": " + std::string(60, '[') + std::string(60, ']') + "}").reason, "no such setting");
}

TEST_F(UnitFileTest, AMessageIsOneShortCleanLine) {
  EXPECT_STREQ(refusal_of(R"({"a\u001b[31m\nb": 1})").what(), "unit.json: a\\u001b[31m\\nb: no such setting");
  EXPECT_STREQ(refusal_of(R"({"a\u202eb": 1})").what(), "unit.json: a\\u202eb: no such setting");
  EXPECT_STREQ(refusal_of("{\"" + std::string(500, 'x') + "\": 1}").what(),
               ("unit.json: " + std::string(60, 'x') + "...: no such setting").c_str());
  EXPECT_STREQ(refusal_of("{\"a\n\": 1}").what(),
               "unit.json: line 2, column 0: syntax error while parsing object key - invalid string: control character "
               "U+000A (LF) must be escaped to \\u000A or \\n; last read: '\"a<U+000A>'; expected string literal");
  const std::string reason = refusal_of("{\"a\": \"" + std::string(500, 'x') + "\x1b\"}").reason;
  EXPECT_EQ(reason.find_first_of("\n\x1b"), std::string::npos);
  EXPECT_LT(reason.size(), 300U);
  const std::string twice = "\"" + std::string(500, 'x') + "\": 1";
  EXPECT_STREQ(refusal_of("{" + twice + "," + twice + "}").what(),
               ("unit.json: " + std::string(60, 'x') + "...: given twice").c_str());
}

TEST_F(UnitFileTest, AnythingButARegularFileOfModestSizeIsRefused) {
  const auto refusal_of_file = [](const std::string& path) {
    try {
      UnitFile::load(path);
    } catch (const UnitFileError& error) {
      EXPECT_EQ(error.file, path);
      return error.reason;
    }
    return std::string("taken");
  };
  ASSERT_EQ(::mkfifo((folder_ / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(refusal_of_file(folder_ / "fifo"), "not a regular file");
  EXPECT_EQ(refusal_of_file("/dev/zero"), "not a regular file");
  EXPECT_EQ(refusal_of_file("/dev/null"), "not a regular file");
  doubles::write_text(folder_ / "large", "{}" + std::string((1 << 20) - 2, ' '));
  EXPECT_EQ(refusal_of_file(folder_ / "large"), "taken");
  doubles::write_text(folder_ / "larger", "{}" + std::string((1 << 20) - 1, ' '));
  EXPECT_EQ(refusal_of_file(folder_ / "larger"), "larger than 1048576 bytes");
}

TEST_F(UnitFileTest, AFileNameIsShownOnOneLine) {
  EXPECT_STREQ(UnitFileError("a\nb", "", "reason").what(), "a\\nb: reason");
}

TEST_F(UnitFileTest, ARefusalSaysWhatWasExpected) {
  EXPECT_EQ(refusal_of(R"({"board": {"handle": "3"}})").expected, "whole number from 0 to 2147483647");
  EXPECT_EQ(refusal_of(R"({"board": 5})").expected, "object of settings");
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
