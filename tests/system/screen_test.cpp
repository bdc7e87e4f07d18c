// "unit run" on a terminal: the live screen.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
namespace fs = std::filesystem;

const char TAKE_SCREEN[] = "\x1b[?1049h\x1b[?25l";
const char GIVE_SCREEN_BACK[] = "\x1b[?25h\x1b[?1049l";
const char REDRAW[] = "\x1b[H";

/// A terminal and the text written to it.
class Terminal {
public:
  Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
    if (screen_ == -1 || grantpt(screen_) != 0 || unlockpt(screen_) != 0) {
      throw std::runtime_error("no terminal");
    }
    line_ = open(ptsname(screen_), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~Terminal() {
    close(line_);
    close(screen_);
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// Makes it the standard output of this process.
  void take_over_output() const { dup2(line_, STDOUT_FILENO); }

  /// All text written so far, with the writer's line ends.
  const std::string& written() {
    char block[4096];
    for (ssize_t size = 0; (size = read(screen_, block, sizeof block)) > 0;) {
      for (ssize_t i = 0; i < size; ++i) {
        if (block[i] != '\r') {
          written_ += block[i];
        }
      }
    }
    return written_;
  }
  /// Waits until `text` appears. False on timeout.
  bool shows(const std::string& text) {
    return eventually([&] { return written().find(text) != std::string::npos; });
  }

private:
  int screen_;
  int line_ = -1;
  std::string written_;
};

class ScreenTest : public testing::Test {
protected:
  ~ScreenTest() override { fs::remove_all(state_); }

  /// The text of the last screen.
  std::string picture() {
    std::string text = terminal_.written();
    text.erase(0, text.rfind(REDRAW) + sizeof REDRAW - 1);
    for (std::size_t at = 0; (at = text.find("\x1b[K")) != std::string::npos;) {
      text.erase(at, 3);
    }
    return text.substr(0, text.find("\x1b[J"));
  }
  /// The library's output while the unit started.
  std::string before_the_screen() { return terminal_.written().substr(0, terminal_.written().find(TAKE_SCREEN)); }
  Ending end() {
    run_.kill(SIGINT);
    return run_.wait();
  }
  Ending command(const std::string& name, const std::vector<std::string>& arguments) {
    std::vector<std::string> line{name, "--unit-state", state_};
    line.insert(line.end(), arguments.begin(), arguments.end());
    return unit_command(line);
  }

  const std::string state_ = "/tmp/unit-test-screen-" + std::to_string(getpid());
  Terminal terminal_;
  OutsideProgram run_{{built_program("unit"), "run", "--state", state_}, "", [this] { terminal_.take_over_output(); }};
};

TEST_F(ScreenTest, ShowsTheUnitAndGivesTheTerminalBack) {
  ASSERT_TRUE(terminal_.shows("\nLibrary's output\x1b[K\n  BASE_HARDWARE::BASE_HARDWARE1 0x"));
  ASSERT_TRUE(terminal_.shows("\x1b[J"));
  EXPECT_THAT(picture(), StartsWith("Simulated unit   " + state_ + "   Ctrl-C stops it\n\nVersions\n"));
  EXPECT_THAT(picture(), HasSubstr("  RF Card ID                          88993 (5300)\n"));
  EXPECT_THAT(picture(), HasSubstr("\nTemperatures\n  RF Temperature                      31.01001 °C\n"));
  EXPECT_THAT(picture(), HasSubstr("\nPower\n  Battery charge                      57 %\n"));
  EXPECT_THAT(picture(), HasSubstr("\nLibrary's output\n  BASE_HARDWARE::BASE_HARDWARE1 0x"));
  const Ending ending = end();
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.err, "");
  EXPECT_THAT(before_the_screen(), MatchesRegex("(BASE_HARDWARE::BASE_HARDWARE1 0x[0-9a-f]+\n)?"));
  EXPECT_THAT(terminal_.written(), HasSubstr(std::string(TAKE_SCREEN) + REDRAW));
  EXPECT_THAT(terminal_.written(), EndsWith(GIVE_SCREEN_BACK));
}

TEST_F(ScreenTest, FollowsTheUnit) {
  ASSERT_TRUE(terminal_.shows("\x1b[J"));
  EXPECT_THAT(command("set", {"power_supply.temperature", "-15"}), ExitedWith(0));
  EXPECT_TRUE(terminal_.shows("  Power Supply Temperature            -1.5 °C\x1b[K\n"));
  EXPECT_THAT(command("interrupt", {"0x40"}), ExitedWith(0));
  EXPECT_TRUE(terminal_.shows("  PowerSwitch:Comm status interrupt value64\x1b[K\n"));
  EXPECT_THAT(terminal_.written(), Not(HasSubstr("value64\n"))) << "outside the picture";
  EXPECT_THAT(end(), ExitedWith(0));
}

TEST_F(ScreenTest, ErrorsStayOffTheScreenAndAreShownWhenTheHostHasEndedByItself) {
  ASSERT_TRUE(terminal_.shows("\x1b[J"));
  command("call", {"NetworkOff", "; echo last words >&2; kill -KILL $PPID #"});
  const Ending ending = run_.wait();
  EXPECT_THAT(ending.status, testing::Optional(Not(0)));
  EXPECT_THAT(ending.err, HasSubstr("last words\n"));
  EXPECT_EQ(ending.err.find("last words"), ending.err.rfind("last words")) << "shown once";
  EXPECT_THAT(terminal_.written(), Not(HasSubstr("last words")));
  EXPECT_THAT(terminal_.written(), EndsWith(GIVE_SCREEN_BACK));
}

}  // namespace
