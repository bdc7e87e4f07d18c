// "unit run" and "unit shutdown": the library started by one command.

#include <signal.h>
#include <unistd.h>

#include "tests/system/command_line.h"
#include "tests/system/inside_files.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

const char UNIT_STATE[] = R"json({
  "versions": [
    {"name": "RF Card ID", "version": "88993 (5300)"},
    {"name": "RF Card Revision", "version": "2"},
    {"name": "RF Firmware Version", "version": "1.02.03 alpha"},
    {"name": "Digital Board Card ID", "version": "92881"},
    {"name": "Digital Board Card Revision", "version": "3"},
    {"name": "Digital Board Firmware Version", "version": "2.05.13 "},
    {"name": "Slot 1 Actel PCI FPGA version", "version": "1.2 rev3"},
    {"name": "Slot 1 Control Board Revision", "version": "3"},
    {"name": "Slot 1 Actel JTAG CPLD version", "version": "1.0 rev2"},
    {"name": "Power Supply Version", "version": "1.02.03"}
  ],
  "temperatures": [
    {"name": "RF Temperature", "celsius": 31.01001},
    {"name": "Power Supply Temperature", "celsius": 25.3},
    {"name": "Battery Temperature", "celsius": 27.0},
    {"name": "Slot 1 MIC284 Temperature", "celsius": 26.0},
    {"name": "Slot 1 OMAP Temperature", "celsius": 38.5},
    {"name": "Digital Board Temperature", "celsius": 35.25}
  ],
  "power": {
    "charge_percent": 57, "battery_present": true, "external_voltage": true,
    "ps_temperature": 29845, "battery_temperature": 30015, "mic284_temperature": 29915
  }
})json";

const char TRACE_LINE[] = "BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n";

TEST(RunTest, OnceAndJsonPrintOneDocumentAndNothingElse) {
  const Ending ending = unit_command({"run", "--once", "--json"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(json::parse(ending.out), json::parse(UNIT_STATE));
  EXPECT_EQ(std::count(ending.out.begin(), ending.out.end(), '\n'), 1);
  EXPECT_THAT(ending.err, MatchesRegex(TRACE_LINE));
}

TEST(RunTest, TheLibrarysDiagnosticsStayOutOfTheDocument) {
  const OutsideFile unit_file(R"json({"power_supply":{"software_version":12},"board":{"rf":{"present":false}}})json");
  const std::string folder = "/tmp/unit-test-run-" + std::to_string(getpid());
  const Ending ending = unit_command({"run", "--once", "--json", "--unit", unit_file.path(), "--state", folder});
  EXPECT_THAT(ending, ExitedWith(0));
  const json state = json::parse(ending.out);
  EXPECT_EQ(state["versions"][0]["version"], "0");
  EXPECT_EQ(state["versions"][9]["version"], "");
  // The library's two streams are merged, and only each stream's own order is kept; each is also logged separately.
  const std::string out = text_of(folder + "/run/unit/log/host.out").value_or("");
  const std::string err = text_of(folder + "/run/unit/log/host.err").value_or("");
  EXPECT_THAT(out, MatchesRegex(TRACE_LINE));
  EXPECT_EQ(err, "HARDWARE::GetPowerSupplyVersion err\n");
  EXPECT_THAT(ending.err, testing::AnyOf(out + err, err + out));
  std::filesystem::remove_all(folder);
}

TEST(RunTest, WithoutExternalVoltageThereIsNone) {
  const OutsideFile unit_file(R"json({"power_supply":{"charger_status":16,"software_version":10203}})json");
  const Ending ending = unit_command({"run", "--once", "--json", "--unit", unit_file.path()});
  const json power = json::parse(ending.out)["power"];
  EXPECT_EQ(power["external_voltage"], false);
  EXPECT_EQ(power["battery_present"], false);
  EXPECT_EQ(power["charge_percent"], 0);
  EXPECT_EQ(power["battery_temperature"], 0);
}

TEST(RunTest, OnceShowsTheStateToPeople) {
  const Ending ending = unit_command({"run", "--once"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, HasSubstr("RF Card ID"));
  EXPECT_THAT(ending.out, HasSubstr("88993 (5300)"));
  EXPECT_THAT(ending.out, HasSubstr("57 %"));
}

TEST(RunTest, ARunningUnitShowsDocumentsUntilItIsEnded) {
  OutsideProgram run({built_program("unit"), "run", "--json"});
  ASSERT_TRUE(eventually([&] { return run.out().find('\n') != std::string::npos; }));
  run.kill(SIGINT);
  const Ending ending = run.wait();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(json::parse(ending.out.substr(0, ending.out.find('\n'))), json::parse(UNIT_STATE));
}

TEST(RunTest, AnsweringOkShutsTheUnitDown) {
  const Ending ending = unit_command({"shutdown", "--json"}, "Ok\n");
  EXPECT_THAT(ending, ExitedWith(0));
  const json document = json::parse(ending.out);
  EXPECT_EQ(document["shut_down"], true);
  std::vector<std::string> names;
  for (const json& call : document["calls"]) {
    names.push_back(call["at"]);
  }
  EXPECT_THAT(names,
              ElementsAre("psdriver.interrupt", "locker.take", "orb.lookup", "orb.lookup", "orb.lookup",
                          "gui.ShowDialog", "gui.ShowDialog", "gui.SetDialogSize", "everybody_engine.GetShutdown",
                          "locker.Init_core", "everybody_engine.ShutdownAll", "hw_enumerate.ShutdownEngine",
                          "/root/.shutdown", "psdriver.SetUserInterface_CommunicationStatus"));
  EXPECT_THAT(ending.err, HasSubstr("Do you want to shutdown?"));
}

TEST(RunTest, AnsweringCancelLeavesTheUnitOn) {
  const Ending ending = unit_command({"shutdown", "--json"}, "cancel\n");
  EXPECT_THAT(ending, ExitedWith(0));
  const json document = json::parse(ending.out);
  EXPECT_EQ(document["shut_down"], false);
  EXPECT_EQ(document["calls"].back()["at"], "gui.ShowDialog");
}

TEST(RunTest, WithoutAnAnswerTheCommandGivesUp) {
  const Ending ending = unit_command({"shutdown", "--json"}, "perhaps\n");
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_THAT(ending.err, testing::EndsWith("unit: standard input ended before the question was answered\n"));
}

}  // namespace
