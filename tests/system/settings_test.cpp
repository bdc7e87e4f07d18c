// "unit settings".

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;

class SettingsTest : public CommandTest {
protected:
  /// The settings as JSON rows by name.
  static std::map<std::string, json> listed() {
    std::map<std::string, json> rows;
    for (const json& row : json::parse(said("settings", {"--json"}))) {
      rows[row["name"]] = row;
    }
    return rows;
  }
};

TEST_F(SettingsTest, EverySettingHasItsTypeUnitRangeAndValue) {
  std::map<std::string, json> rows = listed();
  for (
      const char* row : {
          R"({"name":"board.handle","type":"number","unit":"","minimum":0,"maximum":2147483647,"choices":[],"value":3})",
          R"({"name":"board.rf.present","type":"flag","unit":"","minimum":null,"maximum":null,"choices":[],
               "value":true})",
          R"({"name":"board.rf.transfer_time","type":"duration","unit":"us","minimum":0,"maximum":60000000,
               "choices":["never"],"value":20})",
          R"({"name":"services.gui_manager.behaviour","type":"choice","unit":"","minimum":null,"maximum":null,
               "choices":["present","absent","wrong_type","slow","dies_in_call","throws"],"value":"present"})",
          R"({"name":"sysfs.celsius","type":"text","unit":"","minimum":null,"maximum":null,"choices":[],
               "value":"38.5\n"})",
      }) {
    const json expected = json::parse(row);
    json found = rows[expected["name"]];
    EXPECT_NE(found["doc"], "");
    found.erase("doc");
    EXPECT_EQ(found, expected);
  }
}

TEST_F(SettingsTest, PeopleGetATable) {
  const std::string out = said("settings");
  EXPECT_EQ(static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n')), listed().size() + 1);
  for (const char* line : {"NAME  +VALUE  +UNIT  +RANGE  +DESCRIPTION\n",
                           "\nboard\\.handle  +3  +0\\.\\.2147483647  +handle returned by opening the board",
                           "\nboard\\.rf\\.present  +true  +true, false  +whether",
                           "\nboard\\.rf\\.transfer_time  +20  +us  +0\\.\\.60000000, never  +duration",
                           "\nsysfs\\.celsius  +\"38\\.5\\\\n\"  +text or null  +/sys/class"}) {
    EXPECT_THAT(out, testing::ContainsRegex(line));
  }
}

TEST_F(SettingsTest, ASavedUnitFileMakesTheSameUnit) {
  said("set", {"board.handle", "11", "faults.radalt.read", "fail nth=1000000"});
  const std::string file = folder_.path() + "/saved.json";
  EXPECT_EQ(said("settings", {"--save", file}), "");
  const std::map<std::string, json> rows = listed();
  OutsideProgram other({built_program("unit"), "run", "--json", "--name", "other", "--unit-file", file});
  ASSERT_TRUE(eventually([&] { return other.out().find('\n') != std::string::npos; })) << other.err();
  for (const json& row : json::parse(unit_command({"settings", "--json", "-u", "other"}).out)) {
    EXPECT_EQ(row["value"], rows.at(row["name"])["value"]) << row["name"];
  }
  other.kill(SIGTERM);
  other.wait();
}

TEST_F(SettingsTest, AFileThatCannotBeWrittenIsAnError) {
  const Ending full = command("settings", {"--save", "/dev/full"});
  EXPECT_THAT(full, ExitedWith(1));
  EXPECT_EQ(full.err, "unit: settings: /dev/full: No space left on device\n");
}

}  // namespace
