// A unit shares nothing with the machine and with other units except the folders that it was given.

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <fstream>

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::IsEmpty;
namespace fs = std::filesystem;

TEST(IsolationTest, TwoUnitsSideBySideDoNotMeet) {
  SimulatedUnit one;
  SimulatedUnit other;
  one.with_services().set("power_supply.state_of_charge", 11).start();
  other.with_services().set("power_supply.state_of_charge", 22).set("power_supply.charger_status", 0).start();
  const Host one_host = one.host();
  const Host other_host = other.host();
  const Program other_listener = other.run({"dds_peer", "listen"});
  other_listener.wait_for("listening\n");
  const Program one_listener = one.run({"dds_peer", "listen"});
  one_listener.wait_for("listening\n");

  EXPECT_EQ(one_host.call("GetBatteryChargeStatus")["charge"], 11);
  EXPECT_EQ(other_host.call("GetBatteryChargeStatus")["charge"], 22);
  one_host.call("GetChargerStatus");
  one_listener.wait_for("1\n");
  other_host.call("GetChargerStatus");
  EXPECT_EQ(other_listener.out(), "listening\n");

  const std::uint64_t interrupt = one.interrupt(0x100);
  ASSERT_TRUE(one.shows("System Prompt"));
  EXPECT_THAT(other.dialogs(), IsEmpty());
  one.answer("System Prompt", "Ok");
  EXPECT_TRUE(one.handled(interrupt));
  EXPECT_TRUE(one.text("/run/unit/shutdown"));
  EXPECT_FALSE(other.text("/run/unit/shutdown"));
  EXPECT_EQ(other.setting("power_supply.communication_status"), -1);
}

/// A folder of the machine with contents that must not change.
class Canary {
public:
  Canary() : folder_(fs::temp_directory_path() / ("canary-" + std::to_string(getpid()))) {
    fs::create_directories(folder_ / "deep");
    std::ofstream(folder_ / "bird") << "sings";
    std::ofstream(folder_ / "deep/seed") << "lies";
  }
  ~Canary() { fs::remove_all(folder_); }
  Canary(const Canary&) = delete;
  Canary& operator=(const Canary&) = delete;

  const fs::path& folder() const { return folder_; }

  /// Every path in it with the file's text.
  std::map<std::string, std::string> contents() const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
      std::ifstream file(entry.path());
      contents[entry.path().lexically_relative(folder_)] =
          entry.is_directory() ? "/" : std::string(std::istreambuf_iterator<char>(file), {});
    }
    return contents;
  }

private:
  fs::path folder_;
};

// The name is put into a command line unquoted, so it can run other commands; here they try to reach outside.
TEST(IsolationTest, ANameThatWouldWriteOutsideChangesNothingThere) {
  const Canary canary;
  const auto before = canary.contents();
  const std::string target = canary.folder();
  SimulatedUnit unit;
  const Host host = unit.with_network().start().host();
  const std::string commands =
      "; mount -o remount,rw /usr; mount -o remount,rw /opt/unit; mount -o remount,rw /; mkdir -p " + target +
      "; echo gone > " + target + "/bird; rm -rf " + target +
      "/deep; touch /usr/canary /etc/canary /opt/unit/canary /proc/1/root/canary /canary; mknod /tmp/canary b 8 0; "
      "touch /tmp/reached #";
  host.call("NetworkOff", {commands});
  EXPECT_TRUE(unit.text("/tmp/reached"));
  EXPECT_EQ(canary.contents(), before);
  for (const char* path :
       {"/usr/canary", "/etc/canary", "/canary", "/tmp/canary", "/tmp/reached", BUILD_FOLDER "/canary"}) {
    EXPECT_FALSE(fs::exists(path)) << path;
  }
}

TEST(IsolationTest, EverythingOfAUnitGoesWithIt) {
  fs::path folder;
  {
    SimulatedUnit unit;
    unit.with_services().start();
    const Host host = unit.host();
    host.call("NetworkOff", {"; sleep 1000 & "});
    folder = unit.found().folder;
    EXPECT_TRUE(fs::exists(folder));
  }
  EXPECT_FALSE(fs::exists(folder));
}

TEST(UnitFileTest, AMissingUnitFileIsRefused) {
  const Ending ending = unit_command({"run", "--once", "--unit", "/tmp/no-such-unit.json"});
  EXPECT_THAT(ending, ExitedWith(2));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "unit: /tmp/no-such-unit.json: cannot be read: No such file or directory\n");
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
       {std::vector<std::string>{"run", "--once", "--json", "--unit", file.path()},
        std::vector<std::string>{"exec", "--unit", file.path(), "--", "echo", "started"}}) {
    const Ending ending = unit_command(command);
    EXPECT_THAT(ending, ExitedWith(2));
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "unit: " + file.path() + ": " + GetParam().reason + "\n");
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

TEST(LibraryTest, ALibraryThatIsNotThereIsTheLoadersToReport) {
  const Ending ending = unit_command({"run", "--once", "--json", "--library", "/no/such/library.so"});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "/no/such/library.so: cannot open shared object file: No such file or directory\n");
}

TEST(LibraryTest, ALibraryThatIsNoneIsTheLoadersToReport) {
  const OutsideFile file("this is no library, however long it may be; it only has more bytes than a header needs");
  const Ending ending = unit_command({"run", "--once", "--json", "--library", file.path()});
  EXPECT_THAT(ending, ExitedWith(1));
  EXPECT_EQ(ending.out, "");
  EXPECT_EQ(ending.err, "/run/unit/library/" + fs::path(file.path()).filename().string() + ": invalid ELF header\n");
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
       {std::vector<std::string>{"run", "--once", "--json"}, std::vector<std::string>{"exec", "--", "true"}}) {
    const Ending ending = unit_command(command, "", forbid_user_namespaces);
    EXPECT_THAT(ending, ExitedWith(3));
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err,
              "unit: the simulated unit needs user namespaces, which this machine refuses (No space left on device); "
              "enable them with: sysctl -w user.max_user_namespaces=10000\n");
  }
}

}  // namespace
