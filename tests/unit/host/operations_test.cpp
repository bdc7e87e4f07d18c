#include "host/operation.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "tests/unit/host/fake_hardware.h"

namespace host {
namespace {

using host_test::FakeHardware;
using nlohmann::json;
using testing::ElementsAre;

json call(FakeHardware& hardware, const std::string& name, const json& values = json::array()) {
  const Operation* operation = find_operation(name);
  return operation == nullptr ? json("no such operation") : operation->call(hardware, Arguments(name, values));
}

TEST(OperationsTest, AreThe49OfTheInterfaceEachOnce) {
  std::set<std::string> names;
  std::size_t count = 0;
  for (const auto* group : {&list_operations(), &power_operations(), &setting_operations(), &board_operations()}) {
    count += group->size();
    for (const Operation& operation : *group) {
      names.insert(operation.name);
    }
  }
  EXPECT_EQ(count, 49U);
  EXPECT_EQ(names.size(), 49U);
}

TEST(OperationsTest, HandListsOverAndBack) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "GetVersionList").dump(),
            R"({"result":1,"versions":[{"name":"Firmware","version":"1.02.03"}]})");
  const json before = {{{{"name", "old"}, {"version", "0"}}}};
  EXPECT_EQ(call(hardware, "GetVersionList", before)["versions"].size(), 2U);
  EXPECT_THAT(hardware.calls, ElementsAre("GetVersionList of 0", "GetVersionList of 1"));
  EXPECT_EQ(call(hardware, "GetTemperature").dump(),
            R"({"result":1,"temperatures":[{"celsius":25.3,"name":"Power Supply Temperature"}]})");
}

TEST(OperationsTest, ShowWhatAnOperationSets) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "GetBatteryChargeStatus").dump(), R"({"charge":57,"result":true})");
  EXPECT_EQ(call(hardware, "GetBacklight", {7}).dump(), R"({"level":107,"result":1})");
  EXPECT_EQ(call(hardware, "Get_PowerDown_HomeButton", {"a", "b"}).dump(), R"({"home_button":"b?","power_down":"a!"})");
}

TEST(OperationsTest, PassArgumentsOn) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "StartDHCP", {"eth0; x"}).dump(), "{}");
  call(hardware, "SetupStaticIP", {""});
  call(hardware, "NetworkOff", {"eth0"});
  call(hardware, "SetRefOscillator", {-3});
  call(hardware, "SetAutoTuneThreshold", {1.5});
  call(hardware, "AlarmAnnunciatorState", {true});
  call(hardware, "CopyScripts", {"/media", false});
  EXPECT_THAT(hardware.calls, ElementsAre("StartDHCP eth0; x", "SetupStaticIP ", "NetworkOff eth0",
                                          "SetRefOscillator -3", "SetAutoTuneThreshold 1.500000",
                                          "AlarmAnnunciatorState on", "CopyScripts /media from media"));
}

TEST(OperationsTest, ReturnResultsOfEveryKind) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "GetBW").dump(), R"({"result":0.5})");
  EXPECT_EQ(call(hardware, "PsTemperature").dump(), R"({"result":29845})");
  EXPECT_EQ(call(hardware, "GetFanState", {1}).dump(), R"({"result":4})");
  EXPECT_EQ(call(hardware, "SetTime").dump(), "{}");
}

TEST(OperationsTest, TakeNoObjectsOfTheFramework) {
  FakeHardware hardware;
  EXPECT_EQ(call(hardware, "SetCpuUsageAttr", {nullptr}).dump(), "{}");
  EXPECT_THROW(call(hardware, "SetCpuUsageAttr", {1}), RequestError);
}

}  // namespace
}  // namespace host
