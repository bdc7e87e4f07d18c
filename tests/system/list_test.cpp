// "unit list".

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;
using testing::HasSubstr;

/// The settings as JSON rows by name, without their descriptions.
std::map<std::string, json> listed() {
  const Ending ending = unit_command({"list", "--json"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.err, "");
  std::map<std::string, json> rows;
  for (json row : json::parse(ending.out)) {
    EXPECT_NE(row["doc"], "") << row;
    row.erase("doc");
    rows[row["name"]] = row;
  }
  return rows;
}

TEST(ListTest, EverySettingHasItsTypeUnitAndRange) {
  const std::map<std::string, json> rows = listed();
  for (const char* row : {
           R"({"name":"board.handle","type":"number","unit":"","minimum":0,"maximum":2147483647})",
           R"({"name":"board.digital.card_id","type":"word","unit":"","minimum":0,"maximum":4294967295})",
           R"({"name":"board.rf.present","type":"flag","unit":""})",
           R"({"name":"board.rf.transfer_time","type":"duration","unit":"us","minimum":0,"maximum":60000000,
               "choices":["never"]})",
           R"({"name":"services.gui_manager.behaviour","type":"choice","unit":"",
               "choices":["present","absent","wrong_type","slow","dies_in_call","throws"]})",
           R"({"name":"sysfs.FPGA_ver","type":"text","unit":""})",
       }) {
    const json expected = json::parse(row);
    ASSERT_EQ(rows.count(expected["name"]), 1U) << row;
    EXPECT_EQ(rows.at(expected["name"]), expected);
  }
}

TEST(ListTest, PeopleGetNameKindAndMeaning) {
  const Ending ending = unit_command({"list"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.err, "");
  const json rows = json::parse(unit_command({"list", "--json"}).out);
  EXPECT_EQ(static_cast<std::size_t>(std::count(ending.out.begin(), ending.out.end(), '\n')), 2 * rows.size());
  for (const json& row : rows) {
    EXPECT_THAT(ending.out, HasSubstr("\n    " + row["doc"].get<std::string>() + "\n")) << row["name"];
  }
  for (const char* line : {
           "board.handle                                 number 0..2147483647\n",
           "board.rf.present                             flag\n",
           "board.rf.transfer_time                       duration 0..60000000 never (us)\n",
           "services.gui_manager.behaviour               choice present absent wrong_type slow dies_in_call throws\n",
           "sysfs.FPGA_ver                               text\n",
       }) {
    EXPECT_THAT(ending.out, HasSubstr(line));
  }
}

class ListOnUnitTest : public CommandTest {};

TEST_F(ListOnUnitTest, EverySettingCanBeRead) {
  for (const auto& [name, row] : listed()) {
    const Ending ending = command("get", {"--json", name});
    EXPECT_THAT(ending, ExitedWith(0)) << ending.err;
    EXPECT_EQ(json::parse(ending.out)["name"], name);
  }
}

}  // namespace
