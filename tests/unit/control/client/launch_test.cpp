#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "control/client/errors.h"
#include "control/client/units.h"
#include "tests/doubles/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using control::client::Launched;
using control::client::LaunchError;
using control::client::start_unit;
using nlohmann::json;

const std::string READY = R"(echo '{"ready":{"name":"unit-7","folder":"/run/x/unit-7","supervisor":99}}' >&3; exec 3>&-
)";

/// A program in place of unit-control: a shell script in a folder that it gets as its working folder.
class LaunchTest : public testing::Test {
protected:
  control::client::LaunchOptions program(const std::string& script) const {
    doubles::write_text(folder_ / "unit-control", "#!/bin/sh\ncd " + folder_ / "" + "\n" + script);
    fs::permissions(folder_ / "unit-control", fs::perms::owner_all);
    control::client::LaunchOptions options;
    options.program = folder_ / "unit-control";
    return options;
  }
  std::string text(const std::string& name) const { return doubles::text_of(folder_ / name); }
  LaunchError failure(const std::string& script) const {
    try {
      start_unit(json::object(), program(script));
      return {0, "started"};
    } catch (const LaunchError& error) {
      return error;
    }
  }

  doubles::TemporaryFolder folder_;
};

TEST_F(LaunchTest, TheDocumentArrivesAndTheUnitIsFound) {
  const json launch = {{"name", "é"}, {"unit_file_text", std::string(200'000, 'x')}};
  const Launched launched = start_unit(launch, program("cat > document\n" + READY));
  EXPECT_EQ(json::parse(text("document")), launch);
  EXPECT_EQ(launched.unit.name, "unit-7");
  EXPECT_EQ(launched.unit.folder, "/run/x/unit-7");
  EXPECT_EQ(launched.unit.supervisor, 99);
  ::close(launched.lifeline);
}

TEST_F(LaunchTest, TheSupervisorHasTheFiveDescriptorsOnly) {
  const int further = ::dup(0);
  const Launched launched = start_unit(json::object(), program("(cd /proc/$$/fd; echo *) > descriptors\n" + READY));
  ::close(further);
  ::close(launched.lifeline);
  // The shell has the script open as 10.
  EXPECT_EQ(text("descriptors"), "0 1 10 2 3 4\n");
}

TEST_F(LaunchTest, TheLifelineEndsWithItsLastCopy) {
  ASSERT_EQ(::mkfifo((folder_ / "end").c_str(), 0600), 0);
  const Launched launched = start_unit(json::object(), program(READY + "cat <&4\necho over > end\n"));
  ASSERT_NE(launched.lifeline, -1);
  ::close(launched.lifeline);
  EXPECT_EQ(text("end"), "over\n");
}

TEST_F(LaunchTest, ADetachedUnitHasNoLifelineAndNoErrorOutput) {
  const Launched launched =
      start_unit({{"detach", true}}, program("(cd /proc/$$/fd; echo *; readlink 1 2) > descriptors\n" + READY));
  EXPECT_EQ(launched.lifeline, -1);
  EXPECT_EQ(text("descriptors"), "0 1 10 2 3\n/dev/null\n/dev/null\n");
}

TEST_F(LaunchTest, TheSupervisorIsInASessionOfItsOwnWithDefaultSignals) {
  ::signal(SIGPIPE, SIG_IGN);
  // Read by the shell itself, which blocks signals while it starts programs.
  const std::string script = R"(
while read -r name value; do case $name in SigBlk:|SigIgn:) echo $name $value;; esac; done < /proc/$$/status > signals
read -r line < /proc/$$/stat; set -- $line; echo $6 > session
)";
  const Launched launched = start_unit(json::object(), program(script + READY));
  ::signal(SIGPIPE, SIG_DFL);
  ::close(launched.lifeline);
  EXPECT_NE(std::stoi(text("session")), ::getsid(0));
  EXPECT_EQ(text("signals"), "SigBlk: 0000000000000000\nSigIgn: 0000000000000000\n");
}

TEST_F(LaunchTest, AFailureHasItsReasonAndStatus) {
  const LaunchError told = failure(R"(echo '{"error":{"what":"a.json: unknown key","status":2}}' >&3)");
  EXPECT_EQ(told.status, 2);
  EXPECT_STREQ(told.what(), "a.json: unknown key");
  const LaunchError silent = failure("exit 5\n");
  EXPECT_EQ(silent.status, 1);
  EXPECT_STREQ(silent.what(), "unit-control ended before the unit was ready");
  for (const char* nonsense : {"echo hello >&3", "echo '{}' >&3", R"(echo '{"error":{}}' >&3)", "echo '[1]' >&3",
                               R"(echo '{"ready":{"name":5}}' >&3)"}) {
    EXPECT_STREQ(failure(nonsense).what(), "unit-control gave an answer that is not known") << nonsense;
  }
}

TEST_F(LaunchTest, AProgramThatCannotBeRunIsAnError) {
  control::client::LaunchOptions options;
  options.program = folder_ / "nothing";
  try {
    start_unit(json::object(), options);
    FAIL() << "started";
  } catch (const LaunchError& error) {
    EXPECT_EQ(error.status, 1);
    EXPECT_EQ(error.what(), folder_ / "nothing" + ": No such file or directory");
  }
  doubles::write_text(folder_ / "nothing", "neither script nor program");
  fs::permissions(folder_ / "nothing", fs::perms::owner_all);
  try {
    start_unit(json::object(), options);
    FAIL() << "started";
  } catch (const LaunchError& error) {
    EXPECT_STREQ(error.what(), "cannot start unit-control");
  }
}

TEST_F(LaunchTest, AnInterruptedWaitEndsTheUnit) {
  ASSERT_EQ(::mkfifo((folder_ / "end").c_str(), 0600), 0);
  auto options = program("cat <&4\necho over > end\n");
  options.wait = [](int) { throw std::runtime_error("interrupted"); };
  EXPECT_THROW(start_unit(json::object(), options), std::runtime_error);
  EXPECT_EQ(text("end"), "over\n");
}

}  // namespace
