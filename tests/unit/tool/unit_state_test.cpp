#include "tool/unit_state.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace tool;
using nlohmann::json;
using nlohmann::ordered_json;

/// The operations of a unit, for one test: fixed answers, and the calls in their order.
class FakeOperations {
public:
  FakeOperations() {
    answers["GetVersionList"] = R"({"result":1,"versions":[{"version":"1.2","name":"FPGA"}]})";
    answers["external_voltage"] = R"({"result":false})";
    answers["GetChargerStatus"] = R"({"result":1})";
    answers["GetBatteryChargeStatus"] = R"({"result":true,"charge":57})";
    answers["GetTemperature"] = R"({"temperatures":[{"celsius":38.501,"name":"CPU"}]})";
    answers["BatteryPresent"] = R"({"result":1})";
    answers["PsTemperature"] = R"({"result":29845})";
    answers["BatteryTemperature"] = R"({"result":27215})";
    answers["Slot1MIC284Temperature"] = R"({"result":0})";
  }

  ordered_json operator()(const std::string& operation, const json& arguments) {
    calls += operation + arguments.dump() + " ";
    if (answers[operation].empty()) {
      throw NoValue(operation + ": no answer for 10 s");
    }
    return ordered_json::parse(answers[operation]);
  }

  std::map<std::string, std::string> answers;
  std::string calls;
};

TEST(UnitStateTest, IsReadByCallsInTheirOrder) {
  FakeOperations unit;
  const ordered_json state = read_unit_state(std::ref(unit), 200);
  EXPECT_EQ(state.dump(),
            R"({"versions":[{"name":"FPGA","version":"1.2"}],"temperatures":[{"name":"CPU","celsius":38.501}],)"
            R"("power":{"charge_percent":57,"battery_present":true,"external_voltage":false,)"
            R"("ps_temperature_centikelvin":29845,"battery_temperature_centikelvin":27215,)"
            R"("mic284_temperature_centikelvin":null},)"
            R"("reasons":{"power.mic284_temperature_centikelvin":"not known to the library"}})");
  EXPECT_EQ(unit.calls,
            "GetVersionList[] external_voltage[] GetChargerStatus[] GetBatteryChargeStatus[] GetTemperature[] "
            "BatteryPresent[] external_voltage[200] PsTemperature[] BatteryTemperature[] Slot1MIC284Temperature[] ");
}

TEST(UnitStateTest, AValueThatCannotBeHadIsNullWithItsReason) {
  FakeOperations unit;
  unit.answers["GetTemperature"] = "";
  unit.answers["GetBatteryChargeStatus"] = R"({"result":false,"charge":0})";
  unit.answers["Slot1MIC284Temperature"] = R"({"result":29915})";
  const ordered_json state = read_unit_state(std::ref(unit), 0);
  EXPECT_EQ(state["temperatures"], nullptr);
  EXPECT_EQ(state["power"]["charge_percent"], nullptr);
  EXPECT_EQ(state["reasons"].dump(), R"({"power.charge_percent":"GetBatteryChargeStatus returned false",)"
                                     R"("temperatures":"GetTemperature: no answer for 10 s"})");
}

TEST(UnitStateTest, PeopleGetOneLinePerItem) {
  FakeOperations unit;
  EXPECT_EQ(as_text(sections_of(read_unit_state(std::ref(unit), 0))),
            "Versions\n"
            "  FPGA                                1.2\n"
            "Temperatures\n"
            "  CPU                                 38.50 °C\n"
            "Power\n"
            "  Battery charge                      57 %\n"
            "  Battery present                     yes\n"
            "  External voltage                    no\n"
            "  Power supply temperature            25.30 °C\n"
            "  Battery temperature                 -1.00 °C\n"
            "  MIC284 temperature                  not known\n");
}

TEST(UnitStateTest, PeopleGetTheReasonOfAMissingList) {
  FakeOperations unit;
  unit.answers["GetVersionList"] = "";
  EXPECT_EQ(sections_of(read_unit_state(std::ref(unit), 0))[0].rows[0].second, "GetVersionList: no answer for 10 s");
}

}  // namespace
