// "unit run" on a terminal: the live screen.

#include <signal.h>

#include "tests/system/command_line.h"
#include "tests/system/terminal.h"

namespace {

using namespace system_test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

const std::string TAKE_SCREEN = "\x1b[?1049h\x1b[?25l\x1b[?7l";
const std::string GIVE_SCREEN_BACK = "\x1b[?7h\x1b[?25h\x1b[?1049l";
const std::string PICTURE_BEGIN = "\x1b[H";
const std::string PICTURE_END = "\x1b[J";
const std::string LINE_BEGIN = "\x1b[K";

class ScreenTest : public testing::Test {
protected:
  /// Starts the unit on a new terminal, with these variables.
  void start(const std::vector<std::pair<std::string, std::string>>& variables = {{"TERM", "xterm"}}) {
    terminal_.emplace();
    run_.emplace(std::vector<std::string>{built_program("unit"), "run", "--name", "screened"}, "", [&] {
      unsetenv("NO_COLOR");
      for (const auto& [name, value] : variables) {
        setenv(name.c_str(), value.c_str(), 1);
      }
      terminal_->take_over_output();
    });
  }
  /// Waits until the last whole picture contains the text.
  bool shows(const std::string& text) {
    return eventually([&] { return picture().find(text) != std::string::npos; });
  }
  /// Waits until the last whole picture shows the state and the output.
  bool shows_all() {
    return eventually([&] {
      const std::string text = picture();
      return text.find("MIC284 temperature") != std::string::npos && text.find("Host output") != std::string::npos;
    });
  }
  /// The last whole picture, without control sequences.
  std::string picture() {
    std::string text = terminal_->written();
    const std::size_t end = text.rfind(PICTURE_END);
    if (end == std::string::npos) {
      return "";
    }
    text.resize(end);
    text.erase(0, text.rfind(PICTURE_BEGIN) + PICTURE_BEGIN.size());
    for (std::size_t at = 0; (at = text.find(LINE_BEGIN)) != std::string::npos;) {
      text.erase(at, LINE_BEGIN.size());
    }
    return text;
  }
  Ending end(int signal = SIGINT) {
    run_->kill(signal);
    return run_->wait();
  }
  static void command(const std::vector<std::string>& line) { EXPECT_THAT(unit_command(line), ExitedWith(0)); }

  RuntimeFolder folder_;
  std::optional<Terminal> terminal_;
  std::optional<OutsideProgram> run_;
};

TEST_F(ScreenTest, ShowsTheUnitIn24LinesOf80) {
  start();
  ASSERT_TRUE(shows_all());
  EXPECT_THAT(picture(), HasSubstr("\nHost output\n BASE_HARDWARE::BASE_HARDWARE1 0x"));
  EXPECT_THAT(picture(), StartsWith("screened   Ctrl-C stops it\n\nVersions "));
  EXPECT_THAT(picture(), HasSubstr(" Temperatures\n RF Card ID  "));
  EXPECT_THAT(picture(), HasSubstr(" RF Temperature             31.01 °C\n"));
  EXPECT_THAT(picture(), HasSubstr(" Battery charge            57 %\n"));
  EXPECT_THAT(end(), ExitedWith(0));
  EXPECT_THAT(terminal_->written(), StartsWith(TAKE_SCREEN));
}

TEST_F(ScreenTest, EverySignalGivesTheTerminalBack) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    start();
    ASSERT_TRUE(shows_all());
    const Ending ending = end(signal);
    EXPECT_THAT(ending, ExitedWith(0)) << signal;
    EXPECT_EQ(ending.err, "");
    EXPECT_THAT(terminal_->written(), EndsWith(GIVE_SCREEN_BACK)) << signal;
  }
}

TEST_F(ScreenTest, ACrashOfTheProgramItselfGivesTheTerminalBack) {
  start();
  ASSERT_TRUE(shows_all());
  EXPECT_THAT(end(SIGABRT), EndedBySignal(SIGABRT));
  EXPECT_THAT(terminal_->written(), EndsWith(GIVE_SCREEN_BACK));
}

TEST_F(ScreenTest, FollowsTheUnitAndTheSizeOfTheTerminal) {
  start();
  ASSERT_TRUE(shows_all());
  command({"set", "power_supply.temperature", "-15"});
  EXPECT_TRUE(shows(" Power Supply Temperature   -1.50 °C\n"));
  terminal_->resize(10, 40);
  run_->kill(SIGWINCH);
  EXPECT_TRUE(shows(" more lines"));
  const std::string small = picture();
  EXPECT_EQ(std::count(small.begin(), small.end(), '\n'), 9);
  terminal_->resize(24, 80);
  run_->kill(SIGWINCH);
  EXPECT_TRUE(shows_all());
  EXPECT_THAT(end(), ExitedWith(0));
}

TEST_F(ScreenTest, ShowsTheDialogThatWaitsAndHowToAnswerIt) {
  start();
  ASSERT_TRUE(shows_all());
  command({"press", "power"});
  EXPECT_TRUE(
      shows("\nDialog \"System Prompt\": Do you want to shutdown?  <Cancel>  <Ok>\n"
            "Answer it with: unit answer -u screened Ok\n"));
  command({"answer", "cancel"});
  EXPECT_TRUE(eventually([this] { return picture().find("Dialog") == std::string::npos; }));
  EXPECT_THAT(end(), ExitedWith(0));
}

TEST_F(ScreenTest, SaysThatAnOperationHangs) {
  start();
  ASSERT_TRUE(shows_all());
  command({"set", "faults.psdriver.GetPowerSupplyTemperatureValue", "no_reply"});
  EXPECT_TRUE(shows("screened   Ctrl-C stops it\nGetTemperature: no answer for 3 s\n"));
  EXPECT_THAT(picture(), HasSubstr("RF Card ID")) << "the last state stays";
  EXPECT_THAT(end(), ExitedWith(0));
}

TEST_F(ScreenTest, WithoutAScreenToDrawOnThereAreLines) {
  for (const auto& variables : {std::vector<std::pair<std::string, std::string>>{{"TERM", "dumb"}},
                                {{"TERM", "xterm"}, {"NO_COLOR", "1"}},
                                {{"TERM", ""}}}) {
    start(variables);
    ASSERT_TRUE(eventually([&] { return terminal_->written().find("MIC284 temperature") != std::string::npos; }));
    command({"set", "power_supply.temperature", "-15"});
    EXPECT_TRUE(eventually(
        [&] { return terminal_->written().find("\nPower Supply Temperature: -1.50 °C\n") != std::string::npos; }));
    EXPECT_THAT(end(), ExitedWith(0));
    EXPECT_THAT(terminal_->written(), Not(HasSubstr("\x1b")));
    EXPECT_THAT(run_->err(), HasSubstr("host: BASE_HARDWARE::BASE_HARDWARE1 0x"));
  }
}

TEST_F(ScreenTest, ErrorsAreShownOnTheScreenAndAgainWhenTheHostHasEnded) {
  start({{"TERM", "xterm"}, {"TMPDIR", folder_.path()}});
  ASSERT_TRUE(shows_all());
  unit_command({"call", "NetworkOff", "; echo last words >&2; kill -KILL $PPID #"});
  // The terminal is read meanwhile: it takes no more than its buffer holds.
  EXPECT_TRUE(terminal_->shows(GIVE_SCREEN_BACK));
  const Ending ending = run_->wait();
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_THAT(ending.err, MatchesRegex("(host: [^\n]*\n)*host: last words\n"
                                       "unit: run: host killed by signal 9 \\(Killed\\); logs: [^\n]+\n"));
  EXPECT_THAT(terminal_->written(), EndsWith(GIVE_SCREEN_BACK));
}

}  // namespace
