#include "simulator/process/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>
#include <thread>

#include "tests/doubles/temporary_folder.h"

namespace {

using doubles::text_of;
using doubles::write_text;
using simulator::process::ChildOptions;
using simulator::process::reap;
using simulator::process::run_program;
using simulator::process::shell_status;
using simulator::process::start_program;

class ChildProcessTest : public ::testing::Test {
protected:
  /// Runs the shell command until it exits, with its streams in the log; returns its status as a shell does.
  int run(const std::string& command, ChildOptions options = {}) {
    options.log = log_;
    return shell_status(reap(start_program({"sh", "-c", command}, options), true).value());
  }

  doubles::TemporaryFolder folder_;
  const std::string log_ = folder_ / "log";
};

TEST_F(ChildProcessTest, AProgramEndsWithItsStatusOrThatOfItsSignal) {
  EXPECT_EQ(run_program({"sh", "-c", "exit 7"}), 7);
  EXPECT_EQ(run_program({"sh", "-c", "kill -9 $$"}), 128 + SIGKILL);
}

TEST_F(ChildProcessTest, AProgramReadsItsInput) {
  EXPECT_EQ(run_program({"grep", "-q", "^two$"}, "one\ntwo\n"), 0);
  EXPECT_EQ(run_program({"grep", "-q", "^three$"}, "one\ntwo\n"), 1);
}

TEST_F(ChildProcessTest, ALogTakesBothStreamsAndIsAppendedTo) {
  write_text(log_, "before\n");
  EXPECT_EQ(run("echo out; echo error >&2; cat"), 0);
  EXPECT_EQ(text_of(log_), "before\nout\nerror\n");
}

TEST_F(ChildProcessTest, AProgramThatIsMissingSaysSo) {
  ChildOptions options;
  options.log = log_;
  EXPECT_EQ(shell_status(reap(start_program({"no-such-program"}, options), true).value()), 127);
  EXPECT_EQ(text_of(log_), "simulator_process_test: no-such-program cannot be started: No such file or directory\n");
}

TEST_F(ChildProcessTest, ALogThatCannotBeOpenedIsRefused) {
  ChildOptions options;
  options.log = folder_ / "";
  EXPECT_THROW(start_program({"true"}, options), std::system_error);
}

TEST_F(ChildProcessTest, DescriptorsTakeTheirPlacesWhereverTheyComeFrom) {
  write_text(folder_ / "one", "one");
  write_text(folder_ / "two", "two");
  const int one = ::open((folder_ / "one").c_str(), O_RDONLY | O_CLOEXEC);
  const int two = ::open((folder_ / "two").c_str(), O_RDONLY | O_CLOEXEC);
  // The path at which the starter itself would open the log next.
  const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::close(next);
  ChildOptions options;
  options.descriptors = {{one, two}, {two, one}, {two, next}, {two, next + 1}};
  const auto place = [](int number) { return " /proc/self/fd/" + std::to_string(number); };
  EXPECT_EQ(run("cat" + place(two) + place(one) + place(next) + place(next + 1), options), 0);
  EXPECT_EQ(text_of(log_), "onetwotwotwo");
  ::close(one);
  ::close(two);
}

TEST_F(ChildProcessTest, BlockedSignalsStayBlockedOnlyWhereAsked) {
  sigset_t blocked;
  sigset_t before;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGUSR1);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
  EXPECT_EQ(run("kill -USR1 $$; exit 3"), 128 + SIGUSR1);
  ChildOptions options;
  options.keeps_signal_mask = true;
  EXPECT_EQ(run("kill -USR1 $$; exit 3", options), 3);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(ChildProcessTest, ASessionIsOfItsOwnWhereAsked) {
  const std::string prints_session = "test $(cut -d' ' -f6 /proc/$$/stat) = ";
  EXPECT_EQ(run(prints_session + std::to_string(::getsid(0))), 0);
  ChildOptions options;
  options.own_session = true;
  EXPECT_EQ(run(prints_session + "$$", options), 0);
}

TEST_F(ChildProcessTest, AChildDiesWithItsStarterWhereAsked) {
  ChildOptions options;
  options.dies_with_starter = true;
  options.log = log_;
  pid_t child = 0;
  std::thread([&] {
    child = start_program({"sh", "-c", "echo started; exec sleep 1000"}, options);
    while (text_of(log_) != "started\n") {
      std::this_thread::yield();
    }
  }).join();
  const int status = reap(child, true).value();
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST_F(ChildProcessTest, ARunningChildIsNotReaped) {
  const pid_t child = start_program({"sleep", "1000"});
  EXPECT_EQ(reap(child, false), std::nullopt);
  ::kill(child, SIGTERM);
  EXPECT_EQ(shell_status(reap(child, true).value()), 128 + SIGTERM);
  EXPECT_EQ(reap(child, true), std::nullopt);
}

}  // namespace
