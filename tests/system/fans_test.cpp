// The fan operations, which no unit provides: through the command line, on the library of a running unit.

#include "tests/system/command_fixture.h"
#include "tests/system/inside_files.h"

namespace {

using namespace system_test;

const char ONE_FAN[] = R"([{"name":"left","word1":1,"word2":4294967295}])";

class FansTest : public CommandTest {
protected:
  std::string call(const std::vector<std::string>& words) {
    std::vector<std::string> line{"--json"};
    line.insert(line.end(), words.begin(), words.end());
    const Ending ending = command("call", line);
    EXPECT_THAT(ending, ExitedWith(0));
    EXPECT_EQ(ending.err, "");
    return ending.out;
  }
  /// The library's output, once `line` is its last line on standard error.
  void expect_last_error(const std::string& line) {
    EXPECT_TRUE(eventually([&] { return errors_ != errors() && testing::Value(errors(), testing::EndsWith(line)); }))
        << errors();
    errors_ = errors();
  }
  std::string errors() const { return text_of(state_ + "/run/unit/log/host.err").value_or(""); }

private:
  std::string errors_ = errors();
};

TEST_F(FansTest, TheListOfStatesComesBackAsItWas) {
  EXPECT_EQ(call({"GetFanStatesList"}), "{\"fans\":[],\"result\":0}\n");
  expect_last_error("BASE_HARDWARE::GetFanStatesList err\n");
  EXPECT_EQ(call({"GetFanStatesList", ONE_FAN}), std::string("{\"fans\":") + ONE_FAN + ",\"result\":0}\n");
  expect_last_error("BASE_HARDWARE::GetFanStatesList err\n");
}

TEST_F(FansTest, TheListOfFansComesBackAsItWas) {
  EXPECT_EQ(call({"GetFansList", ONE_FAN}), std::string("{\"fans\":") + ONE_FAN + ",\"result\":0}\n");
  expect_last_error("BASE_HARDWARE::GetFansList err\n");
}

TEST_F(FansTest, SettingAStateChangesNothing) {
  EXPECT_EQ(call({"SetFanState", "0", "2"}), "{\"result\":0}\n");
  expect_last_error("BASE_HARDWARE::SetFanState err\n");
  EXPECT_EQ(call({"GetFanState", "0"}), "{\"result\":4}\n");
  expect_last_error("BASE_HARDWARE::GetFanState index err\n");
}

TEST_F(FansTest, AdjustingSpeedsSaysNothing) {
  const std::string before = errors();
  EXPECT_EQ(call({"AdjustFanSpeeds", ONE_FAN}), std::string("{\"fans\":") + ONE_FAN + "}\n");
  call({"SetFanState", "0", "2"});
  expect_last_error("BASE_HARDWARE::SetFanState err\n");
  EXPECT_EQ(errors(), before + "BASE_HARDWARE::SetFanState err\n");
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
