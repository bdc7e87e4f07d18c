#include <gtest/gtest.h>

#include "simulator/settings/settings.h"
#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using nlohmann::json;
using simulator::model::Point;
using simulator::settings::get_setting;
using simulator::settings::patch;
using simulator::settings::set_setting;
using simulator::settings::SettingError;

class PatchTest : public simulator_test::ModelTest {
protected:
  std::string refusal(const json& values) {
    try {
      patch(unit_, values);
    } catch (const SettingError& error) {
      return error.what();
    }
    return "taken";
  }
};

TEST_F(PatchTest, SetsValuesByNameAndByGroup) {
  patch(unit_,
        json::parse(R"({"board.handle": 9, "board": {"rf": {"adc_count": [5, 6]}}, "sysfs": {"celsius": "1"}})"));
  EXPECT_EQ(get_setting(unit_, "board.handle"), 9);
  EXPECT_EQ(get_setting(unit_, "board.rf.adc_count.1"), 6);
  EXPECT_EQ(get_setting(unit_, "sysfs.celsius"), "1");
  EXPECT_EQ(refusal(json::object()), "taken");
}

TEST_F(PatchTest, OneWrongValueKeepsAllFromBeingSet) {
  EXPECT_EQ(refusal({{"board.handle", 9}, {"sensors.i2c_read_status", 256}}),
            "sensors.i2c_read_status: must be a whole number from 0 to 255, not 256");
  EXPECT_EQ(refusal({{"board.handle", 9}, {"sysfs", {{"colour", 1}}}}), "sysfs.colour: no such setting");
  EXPECT_EQ(refusal(json::parse(R"({"board.handle": 9, "board": {"handle": 9}})")), "board.handle: given twice");
  EXPECT_EQ(refusal(json::array({1})), "must hold one JSON object");
  EXPECT_EQ(refusal({{"board", 5}}), "board: must hold settings, not 5");
  EXPECT_EQ(get_setting(unit_, "board.handle"), 3);
}

TEST_F(PatchTest, AValueThatTheUnitCannotTakeTakesBackTheOthers) {
  set_setting(unit_, "faults.radalt.read", "fail nth=2");
  doubles::write_text(folder_ / "sys", "a file where a folder must be");
  const std::string reason = refusal({{"board.handle", 9}, {"sensors.mic284", 7}, {"sysfs.celsius", "1"}});
  EXPECT_EQ(reason.substr(0, 29), "sysfs.celsius: cannot be set:");
  EXPECT_EQ(get_setting(unit_, "board.handle"), 3);
  EXPECT_EQ(get_setting(unit_, "sensors.mic284"), 0);
  EXPECT_EQ(get_setting(unit_, "faults.radalt.read"), "fail nth=2");
}

TEST_F(PatchTest, ABoardWithoutRoomTakesBackTheOthers) {
  for (std::uint32_t address = 0; address < 4095; ++address) {
    unit_.board().set_register(7, address, 1);
  }
  EXPECT_EQ(refusal({{"board.handle", 9}, {"board.register.8.0", 5}, {"board.register.8.4", 6}}),
            "board.register.8.4: the board has no room for one more register");
  EXPECT_EQ(get_setting(unit_, "board.handle"), 3);
  EXPECT_EQ(get_setting(unit_, "board.register.8.0"), 0);
}

TEST_F(PatchTest, FaultsAreArmedLast) {
  patch(unit_, {{"faults.i2c_read", "stuck"}, {"sensors.mic284", 26}});
  EXPECT_EQ(unit_.crossings().held(Point::I2C_READ), 26);
}

}  // namespace
