// "unit exec" and "unit cp": commands and files on a running unit.

#include <sys/stat.h>

#include <fstream>

#include "tests/system/command_fixture.h"
#include "tests/system/terminal.h"

namespace {

using namespace system_test;
using testing::HasSubstr;
namespace fs = std::filesystem;

class ExecTest : public CommandTest {
protected:
  /// The text of a file of this machine.
  static std::string text_of(const std::string& path) {
    std::ifstream file(path);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }
  std::string path(const std::string& name) const { return folder_.path() + "/" + name; }
};

TEST_F(ExecTest, TheStatusIsTheCommands) {
  EXPECT_THAT(command("exec", {"--", "true"}), ExitedWith(0));
  EXPECT_THAT(command("exec", {"sh", "-c", "exit 7"}), ExitedWith(7));
  EXPECT_THAT(command("exec", {"--", "sh", "-c", "kill -9 $$"}), ExitedWith(137));
  const Ending missing = command("exec", {"--", "no-such-command"});
  EXPECT_THAT(missing, ExitedWith(127));
  EXPECT_EQ(missing.err, "unit: exec: no-such-command: No such file or directory\n");
  const Ending forbidden = command("exec", {"--", "/etc/passwd"});
  EXPECT_THAT(forbidden, ExitedWith(126));
  EXPECT_EQ(forbidden.err, "unit: exec: /etc/passwd: Permission denied\n");
}

TEST_F(ExecTest, TheCommandGetsInputAndEnvironmentAndBothOutputs) {
  const Ending ending = command(
      "exec", {"--env", "GREETING=good day", "--", "sh", "-c", "cat; echo \"$GREETING\"; echo err >&2"}, "in\n");
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.out, "in\ngood day\n");
  EXPECT_EQ(ending.err, "err\n");
  EXPECT_THAT(command("exec", {"--env", "GREETING", "--", "true"}), ExitedWith(2));
}

TEST_F(ExecTest, WordsArePassedOnVerbatim) {
  EXPECT_EQ(said("exec", {"echo", "[a,b]", R"([{"name":"x","celsius":1}])", "", "--json", "-u"}),
            "[a,b] [{\"name\":\"x\",\"celsius\":1}]  --json -u\n");
  const Ending ending = command("exec", {"--", "echo", "\xff"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.err, "unit: exec: argument 5: not valid UTF-8: \\xff\n");
}

TEST_F(ExecTest, ASignalGoesToTheCommand) {
  OutsideProgram exec({built_program("unit"), "exec", "-u", "tested", "--", "sh", "-c",
                       "trap 'echo caught; exit 9' TERM; echo ready; while :; do sleep 0.05; done"});
  ASSERT_TRUE(eventually([&] { return exec.out() == "ready\n"; })) << exec.err();
  exec.kill(SIGTERM);
  const Ending ending = exec.wait();
  EXPECT_THAT(ending, ExitedWith(9));
  EXPECT_EQ(ending.out, "ready\ncaught\n");
}

TEST_F(ExecTest, ACommandThatTakesNoInputCanBeStopped) {
  OutsideProgram exec(
      {"/bin/sh", "-c",
       "yes | exec " + built_program("unit") + " exec -u tested -- sh -c 'echo ready; exec sleep 1000'"});
  ASSERT_TRUE(eventually([&] { return exec.out() == "ready\n"; })) << exec.err();
  EXPECT_EQ(said("exec", {"--", "pkill", "-x", "sleep"}), "");
  EXPECT_THAT(exec.wait(), ExitedWith(143));
}

TEST_F(ExecTest, MuchOutputAndInputPassThrough) {
  const std::string much(3000000, 'x');
  EXPECT_EQ(said("exec", {"--", "cat"}, much), much);
}

TEST_F(ExecTest, OutputThatCannotBeWrittenIsAnError) {
  for (const char* target : {" > /dev/full", " | true"}) {
    const std::string line = "(" + built_program("unit") + " exec -u tested -- yes; echo $? > " + path("status") + ")";
    OutsideProgram({"/bin/sh", "-c", line + target}).wait();
    EXPECT_EQ(text_of(path("status")), "1\n") << target;
  }
}

TEST_F(ExecTest, AnInteractiveCommandHasATerminalOfItsOwn) {
  Terminal terminal;
  OutsideProgram exec({built_program("unit"), "exec", "-u", "tested", "--", "sh", "-c",
                       "stty size; trap 'stty size; exit 4' INT; echo ready; while :; do sleep 0.05; done"},
                      "", [&terminal] { terminal.take_over(); });
  ASSERT_TRUE(terminal.shows("24 80\nready\n")) << terminal.written();
  terminal.resize(30, 100);
  // The unit's terminal follows; then Ctrl-C reaches the command, not this program.
  ASSERT_TRUE(eventually([&] { return said("exec", {"--", "stty", "-F", "/dev/pts/0", "size"}) == "30 100\n"; }));
  terminal.type("\x03");
  EXPECT_TRUE(terminal.shows("^C30 100\n")) << terminal.written();
  EXPECT_THAT(exec.wait(), ExitedWith(4));
}

TEST_F(ExecTest, AFileIsCopiedInBothDirections) {
  const std::string text = std::string("a\0b\n", 4) + std::string(200000, 'x');
  std::ofstream(path("from")) << text;
  EXPECT_EQ(said("cp", {path("from"), ":/tmp/it's here"}), "");
  EXPECT_EQ(said("exec", {"--", "cat", "/tmp/it's here"}), text);
  EXPECT_EQ(said("cp", {"tested:/tmp/it's here", path("back")}), "");
  EXPECT_EQ(text_of(path("back")), text);
}

TEST_F(ExecTest, AFolderTakesACopyUnderItsName) {
  std::ofstream(path("from")) << "text";
  chmod(path("from").c_str(), 0755);
  said("cp", {path("from"), ":/tmp"});
  EXPECT_EQ(said("exec", {"--", "stat", "-c", "%a %s", "/tmp/from"}), "755 4\n");
  fs::create_directory(path("folder"));
  said("cp", {":/tmp/from", path("folder")});
  EXPECT_EQ(text_of(path("folder/from")), "text");
}

TEST_F(ExecTest, AFailedCopyLeavesNothingBehind) {
  const Ending missing = command("cp", {":/tmp/none", path("copy")});
  EXPECT_THAT(missing, ExitedWith(1));
  EXPECT_THAT(missing.err, testing::EndsWith("unit: cp: :/tmp/none: the copy failed with status 1\n"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1) << "only the units' folder";
  EXPECT_THAT(command("cp", {path("none"), ":/tmp"}), ExitedWith(1));
  EXPECT_THAT(command("cp", {folder_.path(), ":/tmp"}), ExitedWith(2));
  EXPECT_THAT(command("cp", {"one", "other"}), ExitedWith(2));
  EXPECT_THAT(command("cp", {":", "other"}), ExitedWith(2));
}

TEST_F(ExecTest, TheEnvironmentOfProgramsIsPrinted) {
  EXPECT_THAT(said("env"), HasSubstr("\nUNIT_RUN=/run/unit\n"));
  EXPECT_EQ(json::parse(said("env", {"--json"}))["UNIT_RUN"], "/run/unit");
}

}  // namespace
