// The temperature list of the real library against the unit's sensors, files and commands.

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::IsEmpty;

class TemperaturesTest : public testing::Test {
protected:
  Host& host() {
    if (!host_) {
      host_.emplace(unit_.start().host());
    }
    return *host_;
  }

  json temperatures(const json& list_before = json::array()) {
    const json answer = host().call("GetTemperature", json::array({list_before}));
    EXPECT_EQ(answer["result"], 1);
    return answer["temperatures"];
  }

  /// The names of the rows.
  std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const json& row : temperatures()) {
      names.push_back(row["name"]);
    }
    return names;
  }

  /// The temperature in the row with that name; null if there is no such row.
  json celsius(const std::string& name) {
    for (const json& row : temperatures()) {
      if (row["name"] == name) {
        return row["celsius"];
      }
    }
    return nullptr;
  }

  /// Makes the path read-only for all processes inside.
  void make_read_only(const std::string& path) {
    const std::string command = "mount --bind " + path + " " + path + " && mount -o remount,ro,bind " + path;
    ASSERT_THAT(unit_.run_to_end({"sh", "-c", command}), ExitedWith(0));
  }

  SimulatedUnit unit_;
  std::optional<Host> host_;
};

TEST_F(TemperaturesTest, TheListShowsEverySensorInItsOrder) {
  EXPECT_EQ(temperatures(), json::parse(R"json([{"name":"RF Temperature","celsius":31.01001},
                                            {"name":"Power Supply Temperature","celsius":25.3},
                                            {"name":"Battery Temperature","celsius":27.0},
                                            {"name":"Slot 1 MIC284 Temperature","celsius":26.0},
                                            {"name":"Slot 1 OMAP Temperature","celsius":38.5},
                                            {"name":"Digital Board Temperature","celsius":35.25}])json"));
  EXPECT_EQ(host().err(), "");
  EXPECT_THAT(unit_.events(), IsEmpty());
}

TEST_F(TemperaturesTest, EarlierRowsGo) {
  EXPECT_EQ(temperatures(json::parse(R"json([{"name":"old","celsius":1.0}])json"))[0]["name"], "RF Temperature");
}

TEST_F(TemperaturesTest, TheGettersTellWhatTheLastListFound) {
  EXPECT_EQ(host().call("PsTemperature")["result"], 0);
  EXPECT_EQ(host().call("BatteryTemperature")["result"], 0);
  EXPECT_EQ(host().call("Slot1MIC284Temperature")["result"], 0);
  temperatures();
  EXPECT_EQ(host().call("PsTemperature")["result"], 29845);
  EXPECT_EQ(host().call("BatteryTemperature")["result"], 30015);
  EXPECT_EQ(host().call("Slot1MIC284Temperature")["result"], 29915);
}

TEST_F(TemperaturesTest, WithoutABatteryItsRowSaysSo) {
  unit_.set("power_supply.charger_status", 0x10);
  host().call("GetChargerStatus");
  EXPECT_EQ(temperatures()[2], json::parse(R"json({"name":"Battery Temp Off (Temp Invalid!)","celsius":0.0})json"));
  EXPECT_EQ(host().call("BatteryTemperature")["result"], 0);
}

TEST_F(TemperaturesTest, TheListDoesNotAskWhetherABatteryIsFitted) {
  unit_.set("power_supply.charger_status", 0x10);
  EXPECT_EQ(celsius("Battery Temperature"), 27.0);
}

TEST_F(TemperaturesTest, APowerSupplyThatFailsIsOneEventAndNoRow) {
  unit_.fault(Point::GET_POWER_SUPPLY_TEMPERATURE_VALUE, {FaultKind::FAIL});
  EXPECT_THAT(names(), ElementsAre("RF Temperature", "Battery Temperature", "Slot 1 MIC284 Temperature",
                                   "Slot 1 OMAP Temperature", "Digital Board Temperature"));
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::GetTemperature() Power Supply Temperature",
                                                "Power Supply Driver Failure: Get Power Supply Temperature")));
  EXPECT_EQ(host().call("PsTemperature")["result"], 0);
}

TEST_F(TemperaturesTest, ABatteryThatFailsIsOneEventAndNoRow) {
  temperatures();
  unit_.fault(Point::GET_BATTERY_TEMPERATURE, {FaultKind::FAIL});
  EXPECT_THAT(names(), ElementsAre("RF Temperature", "Power Supply Temperature", "Slot 1 MIC284 Temperature",
                                   "Slot 1 OMAP Temperature", "Digital Board Temperature"));
  EXPECT_THAT(unit_.events(), ElementsAre(event("Handheld_Hardware::GetTemperature() Battery Temperature",
                                                "Power Supply Driver Failure: Get Battery Temperature")));
  EXPECT_EQ(host().call("BatteryTemperature")["result"], 0);
}

TEST_F(TemperaturesTest, TheToolIsRunByItsCommandThroughTheShell) {
  unit_.start();
  host_.emplace(unit_.host({}, {{"LD_PRELOAD", "/opt/unit/lib/tests/libsystem_recorder.so"}}));
  temperatures();
  EXPECT_EQ(json::parse(unit_.text("/run/unit/commands.jsonl").value())["command"],
            "/home/radalt/bin/i2c_read 3 0x48 0 > /tmp/MIC284");
  EXPECT_EQ(unit_.text("/tmp/MIC284"), "1a\n");
}

TEST_F(TemperaturesTest, AToolThatPrintsNothingReadsZero) {
  unit_.set("sensors.i2c_read_prints", false);
  EXPECT_EQ(celsius("Slot 1 MIC284 Temperature"), 0.0);
  EXPECT_EQ(host().call("Slot1MIC284Temperature")["result"], 27315);
}

TEST_F(TemperaturesTest, TheToolsExitStatusIsNotLookedAt) {
  unit_.set("sensors.i2c_read_status", 3);
  EXPECT_EQ(celsius("Slot 1 MIC284 Temperature"), 26.0);
}

TEST_F(TemperaturesTest, AToolThatCannotReadLeavesNoDegrees) {
  unit_.fault(Point::I2C_READ, {FaultKind::FAIL});
  EXPECT_EQ(celsius("Slot 1 MIC284 Temperature"), 0.0);
  EXPECT_EQ(host().err(), "i2c_read: device 0x48 on bus 3 does not answer\n");
}

TEST_F(TemperaturesTest, AReadingThatCannotBeReplacedIsReadAgain) {
  temperatures();
  make_read_only("/tmp/MIC284");
  unit_.set("sensors.mic284", 0x2b);
  EXPECT_EQ(celsius("Slot 1 MIC284 Temperature"), 26.0);
  EXPECT_EQ(host().call("Slot1MIC284Temperature")["result"], 29915);
  EXPECT_EQ(host().err(), "sh: 1: cannot create /tmp/MIC284: Read-only file system\n");
}

TEST_F(TemperaturesTest, WithoutAReadingThereIsNoRow) {
  temperatures();
  unit_.shell("rm /tmp/MIC284");
  make_read_only("/tmp");
  EXPECT_THAT(names(), ElementsAre("RF Temperature", "Power Supply Temperature", "Battery Temperature",
                                   "Slot 1 OMAP Temperature", "Digital Board Temperature"));
  EXPECT_EQ(host().call("Slot1MIC284Temperature")["result"], 0);
}

TEST_F(TemperaturesTest, WithoutAReadingAnEmptyOmapFileRepeatsTheBattery) {
  unit_.set("sysfs.celsius", "").start();
  make_read_only("/tmp");
  EXPECT_EQ(celsius("Slot 1 OMAP Temperature"), 27.0);
}

TEST_F(TemperaturesTest, AnEmptyOmapFileRepeatsTheRowBefore) {
  unit_.set("sysfs.celsius", "");
  EXPECT_EQ(celsius("Slot 1 OMAP Temperature"), 26.0);
}

TEST_F(TemperaturesTest, WithoutTheOmapFileThereIsNoRow) {
  unit_.set("sysfs.celsius", nullptr);
  EXPECT_THAT(names(), ElementsAre("RF Temperature", "Power Supply Temperature", "Battery Temperature",
                                   "Slot 1 MIC284 Temperature", "Digital Board Temperature"));
}

TEST_F(TemperaturesTest, TheConversionHoldsTheBoardLockOnce) {
  unit_.set("board.rf.control", 1).recorded();
  EXPECT_EQ(host().call("get_RFAdc", {10})["result"], 3318);
  EXPECT_EQ(unit_.setting("board.rf.control"), 1);
  EXPECT_EQ(unit_.calls_of(Point::RADALT_LOCK_GET), 1U);
  EXPECT_EQ(unit_.calls_of(Point::RADALT_LOCK_PUT), 1U);
}

// One value of the unit and its row.
struct Shown {
  std::string setting;
  json value;
  std::string name;
  json celsius;
};

void PrintTo(const Shown& shown, std::ostream* stream) {
  *stream << shown.setting << " " << shown.value << " makes \"" << shown.name << "\" " << shown.celsius;
}

class ShownTemperaturesTest : public TemperaturesTest, public testing::WithParamInterface<Shown> {};

TEST_P(ShownTemperaturesTest, ARowShowsItsValue) {
  unit_.set(GetParam().setting, GetParam().value);
  EXPECT_EQ(celsius(GetParam().name), GetParam().celsius);
}

const char RF[] = "RF Temperature";
const char RF_OFF[] = "RF Temperature Off (Temp Invalid!)";
const char MIC284[] = "Slot 1 MIC284 Temperature";

INSTANTIATE_TEST_SUITE_P(
    Rows, ShownTemperaturesTest,
    testing::Values(Shown{"board.rf.adc_count.2", 0, RF_OFF, 0.0}, Shown{"board.rf.adc_count.2", 8191, RF, 149.99002},
                    Shown{"board.rf.adc_count.2", 8192, RF, 150.01001},
                    Shown{"board.rf.adc_count.2", 8193, RF_OFF, 0.0}, Shown{"board.rf.adc_count.2", 16383, RF_OFF, 0.0},
                    Shown{"board.rf.adc_fitted", false, RF_OFF, 0.0}, Shown{"board.rf.present", false, RF_OFF, 0.0},
                    Shown{"board.rf.transfer_time", "never", RF_OFF, 0.0}, Shown{"board.rf.control", 0, RF, 31.01001},
                    Shown{"power_supply.temperature", -55, "Power Supply Temperature", -5.5},
                    Shown{"power_supply.battery_temperature", -40, "Battery Temperature", -40.0},
                    Shown{"sensors.mic284", 0xf6, MIC284, -10.0}, Shown{"sensors.mic284", 0x1f6, MIC284, -10.0},
                    Shown{"sensors.mic284", 0x100, MIC284, 256.0}, Shown{"sensors.mic284", 0, MIC284, 0.0},
                    Shown{"sysfs.celsius", "warm\n", "Slot 1 OMAP Temperature", 0.0},
                    Shown{"sysfs.celsius", "-3.25 degrees\n", "Slot 1 OMAP Temperature", -3.25},
                    Shown{"board.digital.temperature_count", 4294967295U, "Digital Board Temperature", 1073741824.0}));

}  // namespace
