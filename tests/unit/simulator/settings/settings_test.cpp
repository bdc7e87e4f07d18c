#include "simulator/settings/settings.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using nlohmann::json;
using simulator::settings::find_setting;
using simulator::settings::get_setting;
using simulator::settings::set_setting;
using simulator::settings::set_setting_from_text;
using simulator::settings::Setting;
using simulator::settings::SettingError;
using simulator::settings::settings;
using simulator::settings::SettingType;

/// The row of the documentation's table that describes the setting.
std::string documented(const Setting& setting) {
  const std::string range = std::to_string(setting.minimum) + " to " + std::to_string(setting.maximum);
  std::string takes;
  switch (setting.type) {
    case SettingType::NUMBER:
      takes = range;
      break;
    case SettingType::WORD:
      takes = "word";
      break;
    case SettingType::DURATION:
      takes = range + " or `\"never\"`";
      break;
    case SettingType::FLAG:
      takes = "`true`, `false`";
      break;
    case SettingType::CHOICE:
      takes = "behaviour";
      break;
    case SettingType::OPTIONAL_TEXT:
      takes = "text or `null`";
      break;
    case SettingType::FAULT:
      break;
  }
  return "| `" + setting.name + "` | " + takes + " | " + setting.unit + " | " + setting.doc + " |";
}

/// A value that the setting accepts and that differs from every initial one.
json other_value(const Setting& setting) {
  switch (setting.type) {
    case SettingType::FLAG:
      return true;
    case SettingType::CHOICE:
    case SettingType::FAULT:
      return setting.choices.back();
    case SettingType::OPTIONAL_TEXT:
      return "some text\n";
    default:
      return 77;
  }
}

class SettingsTest : public simulator_test::ModelTest {
protected:
  /// The message for the rejected value.
  std::string refusal(const std::string& name, const json& value) {
    try {
      set_setting(unit_, name, value);
    } catch (const SettingError& error) {
      EXPECT_EQ(error.name, name);
      EXPECT_EQ(error.what(), error.name + ": " + error.reason);
      expected_ = error.expected;
      return error.reason;
    }
    return "taken";
  }

  std::string expected_;  ///< of the last refusal
};

TEST_F(SettingsTest, EverySettingShowsWhatItWasSetTo) {
  for (const Setting& setting : settings()) {
    set_setting(unit_, setting.name, other_value(setting));
    EXPECT_EQ(get_setting(unit_, setting.name), other_value(setting)) << setting.name;
  }
  for (const Setting& setting : settings()) {
    EXPECT_EQ(get_setting(unit_, setting.name), other_value(setting)) << setting.name << " disturbed by another";
  }
}

TEST_F(SettingsTest, EverySettingHasANameAndADocumentation) {
  std::set<std::string> names;
  for (const Setting& setting : settings()) {
    EXPECT_FALSE(setting.doc.empty()) << setting.name;
    EXPECT_EQ(setting.doc.find('\n'), std::string::npos) << setting.name;
    names.insert(setting.name);
  }
  EXPECT_EQ(names.size(), settings().size());
}

TEST_F(SettingsTest, TheDocumentationHasARowForEverySettingAndNoOther) {
  std::vector<std::string> rows;
  for (const std::string& line : doubles::lines_of(UNIT_FILE_PAGE)) {
    if (line.rfind("| `", 0) == 0) {
      rows.push_back(line);
    }
  }
  std::vector<std::string> expected;
  for (const Setting& setting : settings()) {
    // Faults have their own page.
    if (setting.type != SettingType::FAULT) {
      expected.push_back(documented(setting));
    }
  }
  EXPECT_EQ(rows, expected);
}

TEST_F(SettingsTest, SettingsReachTheModel) {
  set_setting(unit_, "board.rf.card_id", 88993);
  set_setting(unit_, "board.digital.temperature_count", 70);
  set_setting(unit_, "board.rf.adc_count.2", 3318);
  set_setting(unit_, "power_supply.temperature", 253);
  EXPECT_EQ(unit_.board().register_value(1, 128), 88993U);
  EXPECT_EQ(unit_.board().read(1, 40), 70U);
  EXPECT_EQ(unit_.board().adc_count(2), 3318U);
  EXPECT_EQ(unit_.power_supply().reply(simulator::model::Reply::POWER_SUPPLY_TEMPERATURE), 253);
}

TEST_F(SettingsTest, AnyBoardRegisterCanBeSet) {
  set_setting(unit_, "board.register.2.4096", "0xFFFFFFFF");
  EXPECT_EQ(unit_.board().read(2, 4096), 0xFFFFFFFFU);
  EXPECT_EQ(get_setting(unit_, "board.register.2.4096"), 0xFFFFFFFFU);
  EXPECT_EQ(refusal("board.register.1.252", 1), "no such setting");
  EXPECT_EQ(refusal("board.register.4294967295.4294967295", 1), "no such setting");
  EXPECT_EQ(refusal("board.register.4294967295.4294967294", 1), "taken");
}

TEST_F(SettingsTest, ABoardThatIsFullTakesNoFurtherRegister) {
  for (std::uint32_t address = 0; address < 4096; ++address) {
    unit_.board().set_register(7, address, 1);
  }
  EXPECT_EQ(refusal("board.register.7.4096", 1), "the board has no room for one more register");
}

TEST_F(SettingsTest, ATextFromTheCommandLineIsReadAsTheSettingWantsIt) {
  set_setting_from_text(unit_, "power_supply.temperature", "-12");
  set_setting_from_text(unit_, "board.digital.firmware", "0x0102030a");
  set_setting_from_text(unit_, "board.rf.transfer_time", "never");
  set_setting_from_text(unit_, "board.rf.present", "false");
  set_setting_from_text(unit_, "services.gui_manager.behaviour", "dies_in_call");
  set_setting_from_text(unit_, "sysfs.celsius", "38.5");
  set_setting_from_text(unit_, "sysfs.brightness", "\"100\\n\"");
  EXPECT_EQ(get_setting(unit_, "power_supply.temperature"), -12);
  EXPECT_EQ(get_setting(unit_, "board.digital.firmware"), 0x0102030A);
  EXPECT_EQ(get_setting(unit_, "board.rf.transfer_time"), "never");
  EXPECT_EQ(get_setting(unit_, "board.rf.present"), false);
  EXPECT_EQ(get_setting(unit_, "services.gui_manager.behaviour"), "dies_in_call");
  EXPECT_EQ(get_setting(unit_, "sysfs.celsius"), "38.5");
  EXPECT_EQ(get_setting(unit_, "sysfs.brightness"), "100\n");
  set_setting_from_text(unit_, "sysfs.celsius", "null");
  EXPECT_EQ(get_setting(unit_, "sysfs.celsius"), nullptr);
  EXPECT_THROW(set_setting_from_text(unit_, "power_supply.temperature", "warm"), SettingError);
}

TEST_F(SettingsTest, UnknownNamesAreRefused) {
  for (const char* name :
       {"board", "board.register", "board.register.1", "board.register.1.x", "board.register.1.",
        "board.register.4294967296.0", "board.register.-1.0", "board.register.+1.0", "power_supply.colour"}) {
    EXPECT_EQ(refusal(name, 1), "no such setting") << name;
    EXPECT_EQ(find_setting(name), std::nullopt) << name;
    EXPECT_THROW(get_setting(unit_, name), SettingError);
  }
}

TEST_F(SettingsTest, NumbersStayInTheirRange) {
  EXPECT_EQ(refusal("sensors.i2c_read_status", 256), "must be a whole number from 0 to 255, not 256");
  EXPECT_EQ(refusal("sensors.i2c_read_status", -1), "must be a whole number from 0 to 255, not -1");
  EXPECT_EQ(refusal("sensors.i2c_read_status", 1.5), "must be a whole number from 0 to 255, not 1.5");
  EXPECT_EQ(refusal("sensors.i2c_read_status", "1"), "must be a whole number from 0 to 255, not \"1\"");
  EXPECT_EQ(refusal("sensors.i2c_read_status", nullptr), "must be a whole number from 0 to 255, not null");
  EXPECT_EQ(refusal("power_supply.temperature", 2147483648),
            "must be a whole number from -2147483648 to 2147483647, not 2147483648");
  EXPECT_EQ(refusal("power_supply.temperature", 18446744073709551615U),
            "must be a whole number from -2147483648 to 2147483647, not 18446744073709551615");
  EXPECT_EQ(refusal("power_supply.temperature", -2147483648), "taken");
  EXPECT_EQ(refusal("power_supply.temperature", 2147483647), "taken");
}

TEST_F(SettingsTest, WordsAreNumbersOrHexadecimalText) {
  const std::string must = "must be a whole number from 0 to 4294967295 or hexadecimal text such as \"0x1a\", not ";
  EXPECT_EQ(refusal("sensors.mic284", 4294967296), must + "4294967296");
  EXPECT_EQ(refusal("sensors.mic284", -1), must + "-1");
  EXPECT_EQ(refusal("sensors.mic284", "1a"), must + "\"1a\"");
  EXPECT_EQ(refusal("sensors.mic284", "0x"), must + "\"0x\"");
  EXPECT_EQ(refusal("sensors.mic284", "0x1g"), must + "\"0x1g\"");
  EXPECT_EQ(refusal("sensors.mic284", "0x100000000"), must + "\"0x100000000\"");
  EXPECT_EQ(refusal("sensors.mic284", "0xFFFFFFFF"), "taken");
  EXPECT_EQ(unit_.sensors().mic284(), 0xFFFFFFFFU);
}

TEST_F(SettingsTest, TheOtherTypesSayWhatTheyTake) {
  EXPECT_EQ(refusal("board.rf.transfer_time", "soon"),
            "must be a whole number from 0 to 60000000 or \"never\", not \"soon\"");
  EXPECT_EQ(refusal("board.rf.present", 1), "must be true or false, not 1");
  EXPECT_EQ(
      refusal("services.gui_manager.behaviour", "shy"),
      "must be one of \"present\", \"absent\", \"wrong_type\", \"slow\", \"dies_in_call\", \"throws\", not \"shy\"");
  const std::string text =
      "must be UTF-8 text of at most 4095 bytes, without control characters but tabs and line ends, or null, not ";
  EXPECT_EQ(refusal("sysfs.celsius", 38.5), text + "38.5");
  EXPECT_EQ(refusal("sysfs.celsius", std::string(4096, 'x')), text + "\"" + std::string(59, 'x') + "...");
  EXPECT_EQ(refusal("sysfs.celsius", "a\x1b[31m"), text + "\"a\\u001b[31m\"");
  EXPECT_EQ(refusal("sysfs.celsius", std::string("a\0b", 3)), text + "\"a\\u0000b\"");
  EXPECT_EQ(refusal("sysfs.celsius", "a\xff"), text + "\"a\xEF\xBF\xBD\"");
  EXPECT_EQ(refusal("sysfs.celsius", "one\ttwo\r\nthr\xC3\xA9\x65"), "taken");
  EXPECT_EQ(refusal("sysfs.celsius", std::string(4095, 'x')), "taken");
}

TEST_F(SettingsTest, ARegisterHasOneSpelling) {
  EXPECT_EQ(refusal("board.register.2.05", 1), "no such setting; did you mean \"board.register.2.5\"?");
  EXPECT_EQ(refusal("board.register.02.0", 1), "no such setting; did you mean \"board.register.2.0\"?");
  EXPECT_EQ(refusal("board.register.00.5", 1), "no such setting; did you mean \"board.register.0.5\"?");
  EXPECT_EQ(refusal("board.register.2.0", 1), "taken");
}

TEST_F(SettingsTest, ARegisterWithANameOfItsOwnIsOneSetting) {
  EXPECT_EQ(find_setting("board.register.1.0")->name, "board.digital.card_id");
  EXPECT_EQ(find_setting("board.register.1.136")->name, "board.rf.firmware");
  EXPECT_EQ(find_setting("board.register.2.0")->name, "board.register.2.0");
  set_setting(unit_, "board.register.1.0", 77);
  EXPECT_EQ(get_setting(unit_, "board.digital.card_id"), 77);
}

TEST_F(SettingsTest, ARefusalSaysWhatWasExpected) {
  refusal("sensors.i2c_read_status", 256);
  EXPECT_EQ(expected_, "whole number from 0 to 255");
  refusal("board.rf.present", 1);
  EXPECT_EQ(expected_, "true or false");
  refusal("faults.radalt.write", "twice");
  EXPECT_EQ(expected_, "one of \"none\", \"fail\", \"slow\"");
  refusal("faults.radalt.write", "fail colour=1");
  EXPECT_EQ(expected_, "one of \"none\", \"fail\", \"slow\"");
  refusal("power_supply.colour", 1);
  EXPECT_EQ(expected_, "");
}

TEST_F(SettingsTest, AForeignNameIsShownOnOneShortLine) {
  try {
    set_setting(unit_, "board\n\x1b[2J." + std::string(100, 'x'), 1);
    ADD_FAILURE() << "taken";
  } catch (const SettingError& error) {
    EXPECT_EQ(error.what(), "board\\n\\u001b[2J." + std::string(49, 'x') + "...: no such setting");
  }
}

TEST_F(SettingsTest, ADeepOrLongValueIsShownShort) {
  json deep;
  for (int level = 0; level < 1000; ++level) {
    deep = json::array({deep});
  }
  EXPECT_EQ(refusal("board.handle", deep), "must be a whole number from 0 to 2147483647, not [...]");
  EXPECT_EQ(refusal("board.handle", json::array({1, 2})), "must be a whole number from 0 to 2147483647, not [1,2]");
  EXPECT_EQ(refusal("board.handle", std::string(100, 'a')),
            "must be a whole number from 0 to 2147483647, not \"" + std::string(59, 'a') + "...");
}

TEST_F(SettingsTest, ATypedTextThatIsNoCleanJsonIsText) {
  const auto refusal_of_text = [this](const std::string& text) {
    try {
      set_setting_from_text(unit_, "board.handle", text);
    } catch (const SettingError& error) {
      return error.reason;
    }
    return std::string("taken");
  };
  const std::string must = "must be a whole number from 0 to 2147483647, not ";
  EXPECT_EQ(refusal_of_text(std::string("5\0junk", 6)), must + "\"5\\u0000junk\"");
  EXPECT_EQ(refusal_of_text("1e999"), must + "\"1e999\"");
  EXPECT_EQ(refusal_of_text("5 5"), must + "\"5 5\"");
  EXPECT_EQ(refusal_of_text("\xff"), must + "\"\xEF\xBF\xBD\"");
  EXPECT_EQ(refusal_of_text(std::string(100'000, '[')), must + "\"" + std::string(59, '[') + "...");
  EXPECT_EQ(refusal_of_text("5"), "taken");
}

TEST_F(SettingsTest, AFileThatCannotBeWrittenIsAnErrorOfItsSetting) {
  doubles::write_text(folder_ / "sys", "a file where a folder must be");
  EXPECT_NE(refusal("sysfs.celsius", "38.5").find("cannot be set: "), std::string::npos);
}

TEST_F(SettingsTest, ARefusedValueSetsNothing) {
  set_setting(unit_, "sensors.i2c_read_status", 3);
  refusal("sensors.i2c_read_status", 256);
  EXPECT_EQ(get_setting(unit_, "sensors.i2c_read_status"), 3);
}

}  // namespace
