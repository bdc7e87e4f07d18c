// Units that cannot be started: bad unit files, bad libraries, machines without user namespaces.

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::MatchesRegex;
namespace fs = std::filesystem;

TEST(UnitFileTest, AMissingUnitFileIsRefused) {
  const Ending ending = unit_command({"run", "--once", "--unit-file", "/tmp/no-such-unit.json"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "unit: run: /tmp/no-such-unit.json: cannot be read: No such file or directory\n");
}

// A rejected unit file, and the reason.
struct Refused {
  std::string text;
  std::string reason;
};

void PrintTo(const Refused& refused, std::ostream* stream) {
  *stream << refused.text << ": " << refused.reason;
}

class RefusedUnitFileTest : public testing::TestWithParam<Refused> {};

TEST_P(RefusedUnitFileTest, NothingStarts) {
  const OutsideFile file(GetParam().text);
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"run", "--once", "--json", "--unit-file", file.path()},
        std::vector<std::string>{"run", "--unit-file", file.path(), "--", "echo", "started"},
        std::vector<std::string>{"shutdown", "--new", "--unit-file", file.path()}}) {
    const Ending ending = unit_command(command);
    EXPECT_THAT(ending, ExitedWith(2));
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "unit: " + command[0] + ": " + file.path() + ": " + GetParam().reason + "\n");
  }
}

INSTANTIATE_TEST_SUITE_P(
    UnitFiles, RefusedUnitFileTest,
    testing::Values(
        Refused{"{\n  \"board\": {\n    \"handle\": 3,,\n",
                "line 3, column 17: syntax error while parsing object key - unexpected ','; expected string literal"},
        Refused{"",
                "line 1, column 1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a "
                "literal"},
        Refused{"[1]", "must hold one JSON object"},
        Refused{R"({"power_supply":{"colour":1}})", "power_supply.colour: no such setting"},
        Refused{R"({"colour":1})", "colour: no such setting"},
        Refused{R"({"power_supply":{"temperature":"warm"}})",
                "power_supply.temperature: must be a whole number from -2147483648 to 2147483647, not \"warm\""},
        Refused{R"({"power_supply":{"reply_delay":-1}})",
                "power_supply.reply_delay: must be a whole number from 0 to 60000000, not -1"},
        Refused{R"({"board":7})", "board: must hold settings, not 7"},
        Refused{R"({"board":{"handle":1,"handle":2}})", "board.handle: given twice"}));

// Files that are none: refused without waiting for their end.
TEST(UnitFileTest, WhatIsNoRegularFileIsRefusedAtOnce) {
  const RuntimeFolder folder;
  const std::string fifo = folder.path() + "/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const std::string link = folder.path() + "/link";
  fs::create_symlink("/dev/zero", link);
  for (const auto& [path, reason] : std::map<std::string, std::string>{{fifo, "not a regular file"},
                                                                       {link, "not a regular file"},
                                                                       {"/dev/zero", "not a regular file"},
                                                                       {"/dev/tty", ""},
                                                                       {"/tmp", "not a regular file"}}) {
    const Ending ending = unit_command({"run", "--unit-file", path, "--", "true"});
    EXPECT_THAT(ending, ExitedWith(2));
    EXPECT_THAT(ending.err, testing::StartsWith("unit: run: " + path + ": " + reason));
  }
}

TEST(UnitFileTest, AnEndlessFileAndOneWithNulBytesAreRefused) {
  const OutsideFile large("{}" + std::string(1024 * 1024, ' '));
  EXPECT_EQ(unit_command({"run", "--unit-file", large.path(), "--", "true"}).err,
            "unit: run: " + large.path() + ": larger than 1048576 bytes\n");
  const OutsideFile with_nul(std::string("{}\0", 3));
  EXPECT_EQ(unit_command({"run", "--unit-file", with_nul.path(), "--", "true"}).err,
            "unit: run: " + with_nul.path() + ": line 1, column 3: NUL byte\n");
  const OutsideFile bytes("{\"\xff\":1}");
  EXPECT_EQ(unit_command({"run", "--unit-file", bytes.path(), "--", "true"}).err,
            "unit: run: " + bytes.path() + ": line 1, column 3: byte that is not UTF-8\n");
}

TEST(LibraryTest, ALibraryThatIsNotThereIsTheLoadersToReport) {
  const Ending ending = unit_command({"run", "--once", "--json", "--library", "/no/such/library.so"});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_EQ(ending.out, "");
  EXPECT_THAT(ending.err,
              MatchesRegex("host: /no/such/library\\.so: cannot open shared object file: No such file or directory\n"
                           "unit: run: host exited with status 1; logs: [^\n]+\n"));
}

TEST(LibraryTest, ALibraryThatIsNoneIsTheLoadersToReport) {
  const OutsideFile file("this is no library, however long it may be; it only has more bytes than a header needs");
  // Programs of the unit may run as another user.
  fs::permissions(file.path(), fs::perms::others_read, fs::perm_options::add);
  const Ending ending = unit_command({"run", "--once", "--json", "--library", file.path()});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_EQ(ending.out, "");
  EXPECT_THAT(ending.err, MatchesRegex("host: [^\n]*/" + fs::path(file.path()).filename().string() +
                                       ": invalid ELF header\n"
                                       "unit: run: host exited with status 1; logs: [^\n]+\n"));
}

void write_text(const char* path, const std::string& text) {
  const int file = open(path, O_WRONLY | O_CLOEXEC);
  if (file == -1 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    _exit(126);
  }
  close(file);
}

/// Makes this process an ordinary user on a machine without user namespaces.
void forbid_user_namespaces() {
  const std::string user = std::to_string(getuid());
  const std::string group = std::to_string(getgid());
  if (unshare(CLONE_NEWUSER) != 0) {
    _exit(125);
  }
  write_text("/proc/self/setgroups", "deny");
  write_text("/proc/self/uid_map", "1000 " + user + " 1");
  write_text("/proc/self/gid_map", "1000 " + group + " 1");
  write_text("/proc/sys/user/max_user_namespaces", "0");
}

TEST(UserNamespacesTest, WithoutThemTheCommandSaysWhatToEnable) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"run", "--once", "--json"}, std::vector<std::string>{"run", "--", "true"}}) {
    const Ending ending = unit_command(command, "", forbid_user_namespaces);
    EXPECT_THAT(ending, ExitedWith(3));
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(
        ending.err,
        "unit: run: the simulated unit needs user namespaces, which this machine refuses (No space left on device); "
        "enable them with: sysctl -w user.max_user_namespaces=10000\n");
  }
}

}  // namespace
