// The command line without a unit: help, wrong words, output that cannot be written, completion.

#include <unistd.h>

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

class UsageTest : public testing::Test {
protected:
  static std::vector<std::string> completed(std::vector<std::string> words) {
    words.insert(words.begin(), {"__complete", "--"});
    const Ending ending = unit_command(words);
    EXPECT_THAT(ending, ExitedWith(0));
    EXPECT_EQ(ending.err, "");
    std::vector<std::string> lines;
    std::istringstream text(ending.out);
    for (std::string line; std::getline(text, line);) {
      lines.push_back(line);
    }
    return lines;
  }

  RuntimeFolder folder_;
};

TEST_F(UsageTest, WithoutACommandTheCommandsAreListed) {
  const Ending ending = unit_command({});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_THAT(ending.err, StartsWith("Usage: unit COMMAND [OPTION…] [ARGUMENT…]\n"));
  EXPECT_THAT(ending.err, HasSubstr("\n  ps          List the running units\n"));
  EXPECT_EQ(unit_command({"--help"}).out, ending.err);
  EXPECT_EQ(unit_command({"help"}).out, ending.err);
}

TEST_F(UsageTest, TheVersionIsPrinted) {
  const Ending ending = unit_command({"--version"});
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_THAT(ending.out, MatchesRegex("unit [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(UsageTest, AnUnknownCommandGetsTheNearestOnes) {
  const Ending near = unit_command({"statsu"});
  EXPECT_THAT(near, ExitedWith(2));
  EXPECT_EQ(near.err, "unit: unknown command \"statsu\"; did you mean status?\n");
  const Ending far = unit_command({"bogus"});
  EXPECT_THAT(far, ExitedWith(2));
  EXPECT_EQ(far.err, "unit: unknown command \"bogus\"; \"unit --help\" lists all\n");
}

TEST_F(UsageTest, ErrorsOfOptionsCarryTheProgramsAndTheCommandsName) {
  for (const auto& [line, error] : std::map<std::vector<std::string>, std::string>{
           {{"get", "--colour"}, "unknown option --colour; see \"unit get --help\""},
           {{"set", "board.handle"}, "VALUE is missing; see \"unit set --help\""},
           {{"ps", "board.handle"}, "unexpected argument \"board.handle\"; see \"unit ps --help\""},
           {{"get", "--unit"}, "--unit: NAME is missing"},
           {{"call", "Init", "\xff"}, "argument 2: not valid UTF-8: \\xff"}}) {
    const Ending ending = unit_command(line);
    EXPECT_THAT(ending, ExitedWith(2));
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "unit: " + line[0] + ": " + error + "\n");
  }
}

TEST_F(UsageTest, EachCommandHasHelp) {
  for (const std::string& command : completed({""})) {
    const Ending ending = unit_command({command, "--help"});
    EXPECT_THAT(ending, ExitedWith(0)) << command;
    EXPECT_THAT(ending.out, StartsWith("Usage: unit " + command + " [OPTION…]"));
    EXPECT_EQ(unit_command({"help", command}).out, ending.out);
  }
}

TEST_F(UsageTest, OutputThatCannotBeWrittenIsAnError) {
  for (const auto& [redirection, reason] : std::map<std::string, std::string>{
           {"> /dev/full", "No space left on device"}, {"| true", "Broken pipe"}, {">&-", "Bad file descriptor"}}) {
    // The reader of the pipe ends before anything is written.
    const std::string line = "{ [ \"" + redirection + "\" != '| true' ] || sleep 0.2; " + built_program("unit") +
                             " --help; echo $? >&2; } " + redirection;
    const Ending ending = OutsideProgram({"/bin/sh", "-c", line}).wait();
    EXPECT_EQ(ending.err, "unit: help: standard output: " + reason + "\n1\n");
  }
}

TEST_F(UsageTest, CommandsAndOptionsAreCompleted) {
  EXPECT_THAT(completed({"sta"}), testing::ElementsAre("status"));
  EXPECT_THAT(completed({"stop", "--"}), testing::ElementsAre("--help", "--unit", "--all"));
  EXPECT_THAT(completed({"cover", ""}), testing::ElementsAre("open", "close"));
  EXPECT_THAT(completed({"run", "--without", "g"}), testing::ElementsAre("gui_manager"));
  EXPECT_THAT(completed({"run", "--unit-file", ""}), testing::ElementsAre(":files"));
  EXPECT_THAT(completed({"get", ""}), testing::IsEmpty()) << "no unit to ask";
}

TEST_F(UsageTest, NamesAreCompletedByTheRunningUnit) {
  ASSERT_THAT(unit_command({"run", "--detach", "--name", "helpful"}), ExitedWith(0));
  EXPECT_THAT(completed({"get", "board.ha"}), testing::ElementsAre("board.handle"));
  EXPECT_THAT(completed({"set", "-u", "helpful", "faults.i2c"}), testing::ElementsAre("faults.i2c_read"));
  EXPECT_THAT(completed({"set", "board.handle", "1", "board.ha"}), testing::ElementsAre("board.handle"));
  EXPECT_THAT(completed({"call", "GetTemp"}), testing::ElementsAre("GetTemperature"));
  EXPECT_THAT(completed({"stop", ""}), testing::ElementsAre("helpful"));
  EXPECT_THAT(completed({"get", "--unit", "h"}), testing::ElementsAre("helpful"));
  EXPECT_THAT(unit_command({"stop"}), ExitedWith(0));
}

TEST_F(UsageTest, TheShellCompletesWithTheProgramsWords) {
  const std::string script =
      "PATH=" BUILD_FOLDER "/bin:$PATH; . " BUILD_FOLDER
      "/share/bash-completion/completions/unit\n"
      "COMP_WORDS=(unit sta); COMP_CWORD=1; _unit; echo \"${COMPREPLY[@]}\"\n"
      "COMP_WORDS=(unit run --unit-file /etc/passw); COMP_CWORD=3; _unit; echo \"${COMPREPLY[@]}\"\n"
      "complete -p unit\n";
  const Ending ending = OutsideProgram({"/bin/bash", "-c", script}).wait();
  EXPECT_THAT(ending.out, StartsWith("status\n/etc/passwd"));
  EXPECT_THAT(ending.out, testing::EndsWith("complete -F _unit unit\n"));
}

TEST_F(UsageTest, AnInstallationWorks) {
  const OutsideFolder prefix;
  const Ending ending =
      OutsideProgram({"/bin/sh", "-c", "exec cmake --install " BUILD_FOLDER " --prefix " + prefix.path()}).wait();
  ASSERT_THAT(ending, ExitedWith(0)) << ending.err;
  EXPECT_THAT(OutsideProgram({prefix.path() + "/bin/unit", "run", "--", "sh", "-c", "exit 7"}).wait(), ExitedWith(7));
  EXPECT_THAT(OutsideProgram({prefix.path() + "/bin/unit", "run", "--once"}).wait(), ExitedWith(0));
  for (const char* file : {"man/man1/unit.1", "man/man1/unit-run.1", "man/man5/unit-file.5",
                           "bash-completion/completions/unit", "zsh/site-functions/_unit"}) {
    EXPECT_TRUE(std::filesystem::is_regular_file(prefix.path() + "/share/" + file)) << file;
  }
}

}  // namespace
