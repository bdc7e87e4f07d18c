// The fan operations, which no unit provides: through the command line, on the library of a running unit.

#include "tests/system/command_fixture.h"

namespace {

using namespace system_test;

const char ONE_FAN[] = R"([{"name":"left","word1":1,"word2":4294967295}])";

class FansTest : public CommandTest {
protected:
  /// The answer of a call during which the library writes these lines; those of its two streams come in either order.
  static std::string call(const std::vector<std::string>& words, const std::vector<std::string>& lines) {
    std::vector<std::string> arguments{"--json"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    const Ending ending = command("call", arguments);
    EXPECT_THAT(ending, ExitedWith(0));
    std::vector<std::string> shown;
    std::istringstream text(ending.err);
    for (std::string line; std::getline(text, line);) {
      shown.push_back(line);
    }
    EXPECT_THAT(shown, testing::UnorderedElementsAreArray(lines));
    return ending.out;
  }
};

TEST_F(FansTest, TheListOfStatesComesBackAsItWas) {
  const std::string line = "host: BASE_HARDWARE::GetFanStatesList err";
  EXPECT_EQ(call({"GetFanStatesList"}, {line}), "{\"fans\":[],\"result\":0}\n");
  EXPECT_EQ(call({"GetFanStatesList", ONE_FAN}, {line}), std::string("{\"fans\":") + ONE_FAN + ",\"result\":0}\n");
}

TEST_F(FansTest, TheListOfFansComesBackAsItWas) {
  EXPECT_EQ(call({"GetFansList", ONE_FAN}, {"host: BASE_HARDWARE::GetFansList err"}),
            std::string("{\"fans\":") + ONE_FAN + ",\"result\":0}\n");
}

TEST_F(FansTest, SettingAStateChangesNothing) {
  EXPECT_EQ(call({"SetFanState", "0", "2"}, {"host: BASE_HARDWARE::SetFanState err"}), "{\"result\":0}\n");
  EXPECT_EQ(
      call({"GetFanState", "0"}, {"host: BASE_HARDWARE::GetFanState 0", "host: BASE_HARDWARE::GetFanState index err"}),
      "{\"result\":4}\n");
}

TEST_F(FansTest, AdjustingSpeedsSaysNothing) {
  EXPECT_EQ(call({"AdjustFanSpeeds", ONE_FAN}, {}), std::string("{\"fans\":") + ONE_FAN + "}\n");
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
