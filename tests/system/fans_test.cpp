// The fan operations, which no unit provides: through the command line, on the library of a running unit.

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;

const char ONE_FAN[] = R"([{"name":"left","word1":1,"word2":4294967295}])";

class FansTest : public CommandTest {
protected:
  /// The answer of a call during which the library writes `line` to standard error; empty: nothing.
  static std::string call(const std::vector<std::string>& words, const std::string& line) {
    std::vector<std::string> arguments{"--json"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Ending ending = command("call", arguments);
    EXPECT_THAT(ending, ExitedWith(0));
    EXPECT_EQ(ending.err, line.empty() ? "" : "host: " + line + "\n");
    return ending.out;
  }
};

TEST_F(FansTest, TheListOfStatesComesBackAsItWas) {
  const std::string line = "BASE_HARDWARE::GetFanStatesList err";
  EXPECT_EQ(call({"GetFanStatesList"}, line), "{\"fans\":[],\"result\":0}\n");
  EXPECT_EQ(call({"GetFanStatesList", ONE_FAN}, line), std::string("{\"fans\":") + ONE_FAN + ",\"result\":0}\n");
}

TEST_F(FansTest, TheListOfFansComesBackAsItWas) {
  EXPECT_EQ(call({"GetFansList", ONE_FAN}, "BASE_HARDWARE::GetFansList err"),
            std::string("{\"fans\":") + ONE_FAN + ",\"result\":0}\n");
}

TEST_F(FansTest, SettingAStateChangesNothing) {
  EXPECT_EQ(call({"SetFanState", "0", "2"}, "BASE_HARDWARE::SetFanState err"), "{\"result\":0}\n");
  EXPECT_EQ(call({"GetFanState", "0"}, "BASE_HARDWARE::GetFanState index err"), "{\"result\":4}\n");
}

TEST_F(FansTest, AdjustingSpeedsSaysNothing) {
  EXPECT_EQ(call({"AdjustFanSpeeds", ONE_FAN}, ""), std::string("{\"fans\":") + ONE_FAN + "}\n");
  EXPECT_EQ(said("logs", {"--host"}).find("AdjustFanSpeeds"), std::string::npos);
}

TEST_F(FansTest, WhatIsNoFanIsRefused) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"SetFanState", "-1", "2"}, std::vector<std::string>{"SetFanState", "0"},
        std::vector<std::string>{"GetFansList", "[{\"name\":\"left\"}]"},
        std::vector<std::string>{"AdjustFanSpeeds", "7"}}) {
    const Ending ending = command("call", words);
    EXPECT_THAT(ending, ExitedWith(2)) << words[0];
    EXPECT_EQ(ending.out, "");
    EXPECT_NE(ending.err, "");
  }
}

}  // namespace
