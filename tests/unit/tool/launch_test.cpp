#include "tool/launch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/doubles/temporary_folder.h"
#include "tool/errors.h"

namespace {

using namespace tool;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

json launch(const std::vector<std::string>& words) {
  const Command command{"run", "", "", launch_options(), {}, nullptr};
  return launch_document(Arguments::parse(command, words));
}

template <typename Action>
std::string refusal(Action action) {
  try {
    action();
  } catch (const UsageError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(LaunchTest, OptionsDescribeTheUnit) {
  const doubles::TemporaryFolder folder;
  doubles::write_text(folder / "unit.json", "{}");
  const json document = launch({"--name", "one", "--unit-file", folder / "unit.json", "--state", folder / "a/../state",
                                "--library", "libother.so", "--without", "gui_manager", "--without", "network",
                                "--dhcp-server", "--bind", folder / "", "-e", "A=b=c", "--limit", "memory=0x40"});
  EXPECT_EQ(document["name"], "one");
  EXPECT_EQ(document["unit_file"], folder / "unit.json");
  EXPECT_EQ(document["unit_file_text"], "{}");
  EXPECT_EQ(document["state"], folder / "state");
  EXPECT_EQ(document["library"], "libother.so") << "no file here: the loader looks for it";
  EXPECT_EQ(document["without"], json::array({"gui_manager"}));
  EXPECT_EQ(document["services"], true);
  EXPECT_EQ(document["network"], false);
  EXPECT_EQ(document["dhcp_server"], true);
  EXPECT_EQ(document["binds"].size(), 1U);
  EXPECT_EQ(document["environment"]["A"], "b=c");
  EXPECT_EQ(document["limits"], json::parse(R"({"memory_mib":64})"));
}

TEST(LaunchTest, FewVariablesArePassedOn) {
  setenv("UNIT_TEST_VARIABLE", "1", 1);
  setenv("UNIT_RUN", "/elsewhere", 1);
  setenv("SECRET", "x", 1);
  setenv("GTEST_BYTES", "\xff", 1);
  const json environment = launch({})["environment"];
  EXPECT_EQ(environment["UNIT_TEST_VARIABLE"], "1");
  for (const char* name : {"UNIT_RUN", "SECRET", "HOME", "GTEST_BYTES"}) {
    EXPECT_FALSE(environment.contains(name)) << name;
  }
}

TEST(LaunchTest, BadOptionsAreRefused) {
  EXPECT_EQ(refusal([] {
              launch({"--limit", "colour=1"});
            }),
            "--limit: must be memory=MIB, processes=N, disk=MIB or files=N, not \"colour=1\"");
  EXPECT_EQ(refusal([] {
              launch({"--limit", "files=0"});
            }),
            "--limit files: must be a whole number from 1 to 1048576 (decimal or 0x…), not \"0\"");
  EXPECT_EQ(refusal([] {
              launch({"--without", "gui_manger"});
            }),
            "--without: unknown part \"gui_manger\"; did you mean gui_manager?");
  EXPECT_EQ(refusal([] { launch({"--env", "=x"}); }), "--env: must be NAME=VALUE, not \"=x\"");
  EXPECT_EQ(refusal([] { launch({"--bind", "/none"}); }), "--bind: /none: no such file or folder");
}

TEST(LaunchTest, WordsAreSplitAsAShellDoes) {
  EXPECT_THAT(shell_words("--wrap", " gdb  --args "), ElementsAre("gdb", "--args"));
  EXPECT_THAT(shell_words("--wrap", R"(a 'b "c' "d 'e" f\ g ''h"" "\"" '\')"),
              ElementsAre("a", "b \"c", "d 'e", "f g", "h", "\"", "\\"));
  EXPECT_THAT(shell_words("--wrap", "''"), ElementsAre(""));
  EXPECT_THAT(shell_words("--wrap", ""), IsEmpty());
  EXPECT_EQ(refusal([] { shell_words("--wrap", "a 'b"); }), "--wrap: unterminated '");
}

}  // namespace
