// "unit run" and "unit shutdown --new": a unit started by one command.

#include <signal.h>
#include <unistd.h>

#include <fstream>

#include "tests/system/command_line.h"
#include "tests/system/terminal.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
namespace fs = std::filesystem;

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
    "charge_percent": 57, "battery_present": true, "external_voltage": true, "ps_temperature_centikelvin": 29845,
    "battery_temperature_centikelvin": 30015, "mic284_temperature_centikelvin": 29915
  }
})json";

const char TRACE_LINE[] = "host: BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n";

std::string text_of(const fs::path& path) {
  std::ifstream file(path);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

class RunTest : public testing::Test {
protected:
  /// A path in a folder of this test.
  std::string path(const std::string& name) const { return folder_.path() + "/" + name; }

  RuntimeFolder folder_;
};

TEST_F(RunTest, OnceAndJsonPrintOneDocumentAndNothingElse) {
  const Ending ending = unit_command({"run", "--once", "--json"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(json::parse(ending.out), json::parse(UNIT_STATE));
  EXPECT_EQ(std::count(ending.out.begin(), ending.out.end(), '\n'), 1);
  EXPECT_THAT(ending.err, MatchesRegex(TRACE_LINE));
}

TEST_F(RunTest, TheLibrarysDiagnosticsStayOutOfTheDocument) {
  const OutsideFile unit_file(R"json({"power_supply":{"software_version":12},"board":{"rf":{"present":false}}})json");
  const Ending ending =
      unit_command({"run", "--once", "--json", "--unit-file", unit_file.path(), "--state", path("kept")});
  EXPECT_THAT(ending, ExitedWith(0));
  const json state = json::parse(ending.out);
  EXPECT_EQ(state["versions"][0]["version"], "0");
  EXPECT_EQ(state["versions"][9]["version"], "");
  EXPECT_THAT(ending.err, MatchesRegex(std::string(TRACE_LINE) + "host: HARDWARE::GetPowerSupplyVersion err\n"));
  // The logs are kept, each stream on its own.
  EXPECT_THAT(text_of(path("kept/logs/host.out")), MatchesRegex(std::string(TRACE_LINE).substr(6)));
  EXPECT_EQ(text_of(path("kept/logs/host.err")), "HARDWARE::GetPowerSupplyVersion err\n");
}

TEST_F(RunTest, AValueThatIsNotKnownIsNullWithItsReason) {
  const OutsideFile unit_file(R"json({"power_supply":{"charger_status":16,"software_version":10203}})json");
  const json state = json::parse(unit_command({"run", "--once", "--json", "--unit-file", unit_file.path()}).out);
  EXPECT_EQ(state["power"]["external_voltage"], false);
  EXPECT_EQ(state["power"]["battery_present"], false);
  EXPECT_EQ(state["power"]["charge_percent"], 0);
  EXPECT_EQ(state["power"]["battery_temperature_centikelvin"], nullptr);
  EXPECT_EQ(state["reasons"]["power.battery_temperature_centikelvin"], "not known to the library");
}

TEST_F(RunTest, OnceShowsTheStateToPeople) {
  const Ending ending = unit_command({"run", "--once"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, HasSubstr("\n  RF Card ID                          88993 (5300)\n"));
  EXPECT_THAT(ending.out, HasSubstr("\n  RF Temperature                      31.01 °C\n"));
  EXPECT_THAT(ending.out, HasSubstr("\n  Battery charge                      57 %\n"));
}

TEST_F(RunTest, ARunningUnitShowsDocumentsUntilItIsEnded) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    OutsideProgram run({built_program("unit"), "run", "--json"});
    ASSERT_TRUE(eventually([&] { return run.out().find('\n') != std::string::npos; }));
    run.kill(signal);
    const Ending ending = run.wait();
    EXPECT_THAT(ending, ExitedWith(0)) << signal;
    EXPECT_EQ(json::parse(ending.out.substr(0, ending.out.find('\n'))), json::parse(UNIT_STATE));
    EXPECT_EQ(unit_command({"ps", "--json"}).out, "[]\n");
  }
}

TEST_F(RunTest, WithACommandTheStatusIsTheCommands) {
  EXPECT_THAT(unit_command({"run", "--", "sh", "-c", "exit 7"}), ExitedWith(7));
  EXPECT_THAT(unit_command({"run", "sh", "-c", "kill -9 $$"}), ExitedWith(137));
  EXPECT_THAT(unit_command({"run", "--", "no-such-command"}), ExitedWith(127));
  EXPECT_THAT(unit_command({"run", "--", "/etc/passwd"}), ExitedWith(126));
  const Ending ending = unit_command({"run", "-e", "GREETING=hello", "--", "sh", "-c", "cat; echo $GREETING"}, "in\n");
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.out, "in\nhello\n");
  EXPECT_EQ(ending.err, "");
  EXPECT_EQ(unit_command({"run", "echo", "[a,b]", "[c]"}).out, "[a,b] [c]\n");
  EXPECT_EQ(unit_command({"ps", "--json"}).out, "[]\n") << "the units are gone";
}

TEST_F(RunTest, AProgramOfTheMachineRunsOnAUnitUnderItsOwnPath) {
  const OutsideFolder mine;
  mine.write("program", "#!/bin/sh\necho started as $0; touch " + mine.path() + "/new || echo read-only\n");
  fs::permissions(mine.path() + "/program", fs::perms::all);
  const Ending ending = unit_command({"run", "--bind", mine.path(), "--", mine.path() + "/program"});
  EXPECT_EQ(ending.out, "started as " + mine.path() + "/program\nread-only\n") << ending.err;
  const Ending missing = unit_command({"run", "--bind", path("none"), "--", "true"});
  EXPECT_THAT(missing, ExitedWith(2));
  EXPECT_EQ(missing.err, "unit: run: --bind: " + path("none") + ": no such file or folder\n");
}

TEST_F(RunTest, AHostOfOnesOwnRunsUnderATool) {
  const Ending ending = unit_command({"run", "--once", "--json", "--wrap", "env 'GREETING=good day'"});
  EXPECT_THAT(ending, ExitedWith(0)) << ending.err;
  EXPECT_EQ(json::parse(ending.out), json::parse(UNIT_STATE));
  const Ending own = unit_command({"run", "--once", "--host", "/bin/false"});
  EXPECT_THAT(own, ExitedWith(1));
  EXPECT_THAT(own.err, MatchesRegex("unit: run: host exited with status 1; logs: [^\n]+\n"));
}

TEST_F(RunTest, AToolHasTheTerminalThatThisCommandHas) {
  Terminal terminal;
  OutsideProgram run({built_program("unit"), "run", "--wrap", "env GREETING=hello"}, "",
                     [&terminal] { terminal.take_over(); });
  EXPECT_TRUE(eventually([] {
    return unit_command({"call", "GetMaxInterfaces"}).out == "result: 1\n";
  })) << terminal.written();
  EXPECT_TRUE(terminal.shows("BASE_HARDWARE::BASE_HARDWARE1 0x"));
  terminal.type("\x03");
  EXPECT_THAT(run.wait(), ExitedWith(0));
}

TEST_F(RunTest, AProgramOfTheBuildIsFoundByItsPathThere) {
  EXPECT_THAT(unit_command({"run", "--", built_program("unit-host"), "--colour"}), ExitedWith(2));
}

TEST_F(RunTest, AHostThatIsKilledIsReportedWithItsLogs) {
  OutsideProgram run({built_program("unit"), "run", "--json", "--name", "doomed"}, "",
                     [this] { setenv("TMPDIR", folder_.path().c_str(), 1); });
  ASSERT_TRUE(eventually([&] { return run.out().find('\n') != std::string::npos; }));
  unit_command({"call", "GetFanState", "0"});
  unit_command({"call", "NetworkOff", "; kill -SEGV $PPID #"});
  const Ending ending = run.wait();
  EXPECT_THAT(ending, ExitedWith(1));
  const std::string before = "host killed by signal 11 (Segmentation fault); logs: ";
  EXPECT_THAT(ending.err, HasSubstr("host: BASE_HARDWARE::GetFanState index err\n"));
  ASSERT_THAT(ending.err, HasSubstr(before));
  std::string logs = ending.err.substr(ending.err.find(before) + before.size());
  logs.resize(logs.find('\n'));
  EXPECT_THAT(logs, testing::StartsWith(folder_.path() + "/unit-failed-"));
  EXPECT_THAT(text_of(logs + "/host.err"), HasSubstr("BASE_HARDWARE::GetFanState index err\n"));
}

TEST_F(RunTest, OptionsThatContradictEachOtherAreRefused) {
  for (const std::vector<std::string>& line : {std::vector<std::string>{"run", "--once", "--", "true"},
                                               {"run", "--detach", "--", "true"},
                                               {"run", "--detach", "--once"},
                                               {"run", "--colour"},
                                               {"run", "--env", "GREETING"},
                                               {"run", "--limit", "memory"},
                                               {"run", "--limit", "memory=0"},
                                               {"run", "--without", "printer"},
                                               {"run", "--wrap", "'gdb"}}) {
    const Ending ending = unit_command(line);
    EXPECT_THAT(ending, ExitedWith(2)) << line.back();
    EXPECT_THAT(ending.err, MatchesRegex("unit: run: --[^\n]*\n|unit: run: unknown option --colour[^\n]*\n"));
  }
}

TEST_F(RunTest, AnsweringOkShutsANewUnitDown) {
  const Ending ending = unit_command({"shutdown", "--new", "--json"}, "Ok\n");
  EXPECT_THAT(ending, ExitedWith(0)) << ending.err;
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
                          "shell.shutdown", "psdriver.SetUserInterface_CommunicationStatus"));
  EXPECT_THAT(ending.err, HasSubstr("Do you want to shutdown?"));
  EXPECT_EQ(unit_command({"ps", "--json"}).out, "[]\n");
}

TEST_F(RunTest, AnsweringCancelLeavesTheUnitOn) {
  const Ending ending = unit_command({"shutdown", "--new"}, "cancel\n");
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, HasSubstr("answer: \nThe unit stays on. Calls:\n  1       0.000 ms  psdriver.interrupt "));
}

TEST_F(RunTest, WithoutAnAnswerTheCommandGivesUp) {
  const Ending ending = unit_command({"shutdown", "--new", "--json"}, "perhaps\n");
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_THAT(ending.err, testing::EndsWith("unit: shutdown: standard input ended before the question was answered\n"));
}

}  // namespace
