// The commands that read and change the values of a running unit and call its operations.

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

TEST_F(CommandTest, GetPrintsAValue) {
  EXPECT_EQ(said("get", {"board.digital.card_id"}), "92881\n");
  EXPECT_EQ(said("get", {"sysfs.celsius"}), "38.5\n");
  EXPECT_EQ(said("get", {"--json", "power_supply.temperature"}),
            R"({"name":"power_supply.temperature","value":253,"unit":"0.1 degC"})"
            "\n");
}

TEST_F(CommandTest, GetPrintsSeveralValuesAsATable) {
  EXPECT_EQ(said("get", {"board.handle", "power_supply.temperature", "sysfs.celsius"}),
            "NAME                      VALUE     UNIT\n"
            "board.handle              3\n"
            "power_supply.temperature  253       0.1 degC\n"
            "sysfs.celsius             \"38.5\\n\"\n");
  EXPECT_EQ(json::parse(said("get", {"--json", "board.handle", "board.rf.present"})),
            json::parse(R"([{"name":"board.handle","value":3,"unit":""},
                            {"name":"board.rf.present","value":true,"unit":""}])"));
}

TEST_F(CommandTest, SetShowsInTheUnitsState) {
  EXPECT_EQ(said("set", {"power_supply.temperature", "301"}), "");
  EXPECT_TRUE(eventually([this] { return run_.out().find(R"("celsius":30.1)") != std::string::npos; }));
}

TEST_F(CommandTest, SeveralValuesAreSetTogetherOrNotAtAll) {
  EXPECT_EQ(said("set", {"--json", "board.handle", "7", "sysfs.celsius", "40", "board.rf.transfer_time", "never"}),
            R"([{"name":"board.handle","value":7},{"name":"sysfs.celsius","value":"40"},)"
            R"({"name":"board.rf.transfer_time","value":"never"}])"
            "\n");
  EXPECT_THAT(command("set", {"board.handle", "8", "board.digital.card_id", "x"}), ExitedWith(2));
  EXPECT_THAT(command("set", {"board.handle", "8", "board.handle", "9"}), ExitedWith(2));
  EXPECT_THAT(command("set", {"board.handle", "8", "sysfs.celsius"}), ExitedWith(2));
  EXPECT_EQ(said("get", {"board.handle"}), "7\n");
}

TEST_F(CommandTest, AWrongNameGetsTheNearestOnesAndAWrongValueItsRange) {
  const Ending unknown = command("set", {"board.handel", "1"});
  EXPECT_THAT(unknown, ExitedWith(2));
  EXPECT_EQ(unknown.err, "unit: set: board.handel: no such setting; did you mean \"board.handle\"?\n");
  const Ending wrong = command("set", {"board.handle", "-1"});
  EXPECT_THAT(wrong, ExitedWith(2));
  EXPECT_EQ(wrong.err, "unit: set: board.handle: must be a whole number from 0 to 2147483647, not -1\n");
  EXPECT_EQ(said("get", {"board.handle"}), "3\n");
}

TEST_F(CommandTest, WatchPrintsEachChange) {
  OutsideProgram watch({built_program("unit"), "watch", "-u", "tested", "board.handle", "power_supply.temperature"});
  ASSERT_TRUE(eventually([&] { return watch.out() == "board.handle 3\npower_supply.temperature 253 0.1 degC\n"; }))
      << watch.out() << watch.err();
  said("set", {"power_supply.temperature", "-15"});
  EXPECT_TRUE(eventually([&] {
    return watch.out() ==
           "board.handle 3\npower_supply.temperature 253 0.1 degC\npower_supply.temperature -15 0.1 degC\n";
  })) << watch.out();
  watch.kill(SIGINT);
  EXPECT_THAT(watch.wait(), EndedBySignal(SIGINT));
}

TEST_F(CommandTest, FaultsAreListedAndCleared) {
  said("set", {"faults.radalt.read", "fail value=5 nth=1000000"});
  EXPECT_THAT(said("faults"),
              testing::ContainsRegex("\nradalt\\.read  +fail value=5 nth=1000000  +[0-9]+  +[0-9]+  +fail "));
  const json faults = json::parse(said("faults", {"--json"}));
  EXPECT_THAT(faults[0]["setting"].get<std::string>(), StartsWith("faults."));
  EXPECT_EQ(said("faults", {"--clear"}), "disarmed: 1\n");
  EXPECT_EQ(said("get", {"faults.radalt.read"}), "none\n");
}

TEST_F(CommandTest, CallAnswersWhatTheOperationDoes) {
  EXPECT_EQ(said("call", {"--json", "GetMaxInterfaces"}), "{\"result\":1}\n");
  EXPECT_EQ(said("call", {"read_hw", "3", "1", "0"}), "result: 0\nvalue: 92881\n");
  EXPECT_EQ(said("call", {"PsTemperature"}), "result: 29845 (25.30 °C)\n");
  EXPECT_EQ(said("call", {"--json", "PsTemperature"}), R"({"result":29845,"units":{"result":"0.01 K"}})"
                                                       "\n");
  EXPECT_THAT(said("call", {"GetTemperature"}), HasSubstr("\n  RF Temperature             31.01 °C\n"));
}

TEST_F(CommandTest, CallRefusesWhatTheHostRefuses) {
  const Ending unknown = command("call", {"GetTemperatur"});
  EXPECT_THAT(unknown, ExitedWith(2));
  EXPECT_EQ(unknown.out, "");
  EXPECT_EQ(unknown.err, "unit: call: unknown operation \"GetTemperatur\"; did you mean GetTemperature?\n");
  const Ending argument = command("call", {"GetFanState", "x"});
  EXPECT_THAT(argument, ExitedWith(2));
  EXPECT_THAT(argument.err, HasSubstr("GetFanState: argument 1 (index): expected an unsigned 32-bit integer"));
}

TEST_F(CommandTest, ACallThatHangsIsGivenUpAfterItsTimeLimit) {
  said("set", {"faults.psdriver.GetPowerSupplyTemperatureValue", "no_reply"});
  const Ending ending = command("call", {"--timeout", "0.3", "GetTemperature"});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_EQ(ending.err, "unit: call: GetTemperature: no answer for 0.3 s; the call goes on\n");
}

TEST_F(CommandTest, TheLibrarysOutputIsShownWithTheCommandThatWaitsForIt) {
  const Ending ending = command("call", {"GetFanState", "0"});
  EXPECT_EQ(ending.out, "result: 4\n");
  // The library writes to both of its streams; only each stream's own order is kept.
  const std::string out = "host: BASE_HARDWARE::GetFanState 0\n";
  const std::string err = "host: BASE_HARDWARE::GetFanState index err\n";
  EXPECT_THAT(ending.err, testing::AnyOf(out + err, err + out));
}

TEST_F(CommandTest, OperationsAreListedWithTheirArguments) {
  EXPECT_THAT(said("operations"), MatchesRegex("OPERATION +ARGUMENTS\n(.|\n)*GetFanState +index: [^\n]*\n(.|\n)*"));
  EXPECT_EQ(json::parse(said("operations", {"--json"})).size(), 49U);
}

TEST_F(CommandTest, RegistersAreReadAndWritten) {
  EXPECT_EQ(said("poke", {"3", "0x10", "0xdeadbeef"}), "");
  EXPECT_EQ(said("peek", {"3", "16"}), "0xdeadbeef (3735928559)\n");
  EXPECT_EQ(said("peek", {"--json", "3", "16"}), "{\"space\":3,\"address\":16,\"value\":3735928559}\n");
  const Ending wrong = command("poke", {"3", "16", "4294967296"});
  EXPECT_THAT(wrong, ExitedWith(2));
  EXPECT_EQ(wrong.err,
            "unit: poke: VALUE: must be a whole number from 0 to 4294967295 (decimal or 0x…), not \"4294967296\"\n");
}

}  // namespace
