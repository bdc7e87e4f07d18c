// The network operations with the machine's real commands, in a unit's own network.

#include <fstream>

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
namespace fs = std::filesystem;

/// One command passed to the shell, and the state of the root file system before and after it.
struct Command {
  std::string text;
  std::string before;
  std::string after;

  bool operator==(const Command& other) const {
    return text == other.text && before == other.before && after == other.after;
  }
};

void PrintTo(const Command& command, std::ostream* stream) {
  *stream << command.before << " \"" << command.text << "\" " << command.after;
}

class NetworkTest : public testing::Test {
protected:
  /// Starts the unit with a host whose commands are recorded.
  Host& host() {
    if (!host_) {
      host_.emplace(unit_.start().host({}, {{"LD_PRELOAD", "/opt/unit/lib/tests/libsystem_recorder.so"}}));
    }
    return *host_;
  }

  std::vector<Command> commands() const {
    std::vector<Command> commands;
    std::istringstream lines(unit_.text("/run/unit/commands.jsonl").value_or(""));
    for (std::string line; std::getline(lines, line);) {
      const json command = json::parse(line);
      commands.push_back({command["command"], command["before"], command["after"]});
    }
    return commands;
  }

  std::vector<std::string> command_texts() const {
    std::vector<std::string> texts;
    for (const Command& command : commands()) {
      texts.push_back(command.text);
    }
    return texts;
  }

  /// The output of a shell inside.
  std::string said_inside(const std::string& command) { return unit_.run_to_end({"sh", "-c", command}).out; }

  bool up(const std::string& interface) {
    return said_inside("ip -o link show " + interface).find(",UP") != std::string::npos;
  }

  /// How many DHCP clients run inside.
  int clients() { return std::stoi(said_inside("cat /proc/[0-9]*/comm | grep -c '^udhcpc$'; true")); }

  SimulatedUnit unit_;
  std::optional<Host> host_;
};

TEST_F(NetworkTest, OffTakesTheInterfaceDown) {
  unit_.with_network();
  host();
  ASSERT_TRUE(up("eth0"));
  EXPECT_EQ(host().call("NetworkOff", {"eth0"}), json::object());
  EXPECT_THAT(command_texts(), ElementsAre("ifconfig eth0 down"));
  EXPECT_FALSE(up("eth0"));
  EXPECT_TRUE(up("lo"));
  EXPECT_EQ(host().err(), "");
}

TEST_F(NetworkTest, StaticTakesTheInterfaceDownAndUpAndSetsNoAddress) {
  unit_.with_network();
  host().call("NetworkOff", {"eth0"});
  unit_.shell("rm /run/unit/commands.jsonl");
  EXPECT_EQ(host().call("SetupStaticIP", {"eth0"}), json::object());
  EXPECT_THAT(commands(), ElementsAre(Command{"ifconfig eth0 down", "read-only", "read-only"},
                                      Command{"ifconfig eth0 up", "read-only", "read-only"}));
  EXPECT_TRUE(up("eth0"));
  EXPECT_EQ(said_inside("ip -4 -o address show eth0"), "");
}

TEST_F(NetworkTest, StaticKeepsTheAddressThatTheSystemHolds) {
  unit_.with_network();
  host();
  said_inside("ip address add 10.77.0.9/24 dev eth0");
  host().call("SetupStaticIP", {"eth0"});
  EXPECT_THAT(said_inside("ip -4 -o address show eth0"), HasSubstr("inet 10.77.0.9/24"));
}

TEST_F(NetworkTest, DhcpGetsALeaseWhileTheRootIsWritable) {
  unit_.with_dhcp_server();
  EXPECT_EQ(host().call("StartDHCP", {"eth0"}), json::object());
  EXPECT_THAT(commands(), ElementsAre(Command{"ifconfig eth0 down", "read-only", "read-only"},
                                      Command{"mount -o remount,rw /", "read-only", "writable"},
                                      Command{"udhcpc -i eth0 -b -T 3 -t 3", "writable", "writable"},
                                      Command{"mount -o remount,ro /", "writable", "read-only"}));
  EXPECT_TRUE(up("eth0"));
  EXPECT_THAT(said_inside("ip -4 -o address show eth0"), HasSubstr("inet 10.77.0."));
  EXPECT_THAT(unit_.text("/run/unit/leases").value_or(""), HasSubstr(" 10.77.0."));
  EXPECT_THAT(said_inside("cat /etc/resolv.conf"), HasSubstr("nameserver 10.77.0.1"));
  EXPECT_EQ(said_inside("touch /written 2>&1"), "touch: cannot touch '/written': Read-only file system\n");
  EXPECT_EQ(clients(), 1);
}

TEST_F(NetworkTest, EveryStartLeavesOneMoreClient) {
  unit_.with_dhcp_server();
  host().call("StartDHCP", {"eth0"});
  host().call("StartDHCP", {"eth0"});
  EXPECT_EQ(clients(), 2);
}

/// Whether a process on this machine, inside a unit or not, was started with these words.
bool runs(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) {
    line += word + '\0';
  }
  for (const fs::directory_entry& process : fs::directory_iterator("/proc")) {
    std::ifstream file(process.path() / "cmdline");
    if (std::string(std::istreambuf_iterator<char>(file), {}) == line) {
      return true;
    }
  }
  return false;
}

// The client makes its three attempts, three seconds each, and moves to the background.
TEST_F(NetworkTest, WithoutAServerTheClientGoesToTheBackgroundAndEndsWithTheUnit) {
  unit_.with_network();
  const std::string name = "net" + std::to_string(getpid());
  host();
  said_inside("ip link set eth0 down; ip link set eth0 name " + name);
  EXPECT_EQ(host().call("StartDHCP", {name}), json::object());
  EXPECT_THAT(commands(), ElementsAre(Command{"ifconfig " + name + " down", "read-only", "read-only"},
                                      Command{"mount -o remount,rw /", "read-only", "writable"},
                                      Command{"udhcpc -i " + name + " -b -T 3 -t 3", "writable", "writable"},
                                      Command{"mount -o remount,ro /", "writable", "read-only"}));
  EXPECT_EQ(said_inside("ip -4 -o address show " + name), "");
  EXPECT_EQ(clients(), 1);
  EXPECT_THAT(host().leave(), ExitedWith(0));
  EXPECT_TRUE(runs({"udhcpc", "-i", name, "-b", "-T", "3", "-t", "3"}));
  unit_.stop();
  EXPECT_FALSE(runs({"udhcpc", "-i", name, "-b", "-T", "3", "-t", "3"}));
}

TEST_F(NetworkTest, CommandsThatFailAreNotReported) {
  EXPECT_EQ(host().call("SetupStaticIP", {"eth9"}), json::object());
  EXPECT_EQ(host().call("StartDHCP", {"eth9"}), json::object());
  EXPECT_THAT(command_texts(),
              ElementsAre("ifconfig eth9 down", "ifconfig eth9 up", "ifconfig eth9 down", "mount -o remount,rw /",
                          "udhcpc -i eth9 -b -T 3 -t 3", "mount -o remount,ro /"));
  EXPECT_EQ(host().call("GetMaxInterfaces")["result"], 1);
}

TEST_F(NetworkTest, AfterAFailedStartTheRootIsReadOnlyAgain) {
  host().call("StartDHCP", {"eth9"});
  EXPECT_EQ(commands().back(), (Command{"mount -o remount,ro /", "writable", "read-only"}));
}

class InterfaceNameTest : public NetworkTest, public testing::WithParamInterface<std::string> {};

TEST_P(InterfaceNameTest, TheNameIsPutBetweenTheLiteralsAsItIs) {
  const std::string& name = GetParam();
  host().call("NetworkOff", {name});
  host().call("SetupStaticIP", {name});
  host().call("StartDHCP", {name});
  EXPECT_THAT(command_texts(),
              ElementsAre("ifconfig " + name + " down", "ifconfig " + name + " down", "ifconfig " + name + " up",
                          "ifconfig " + name + " down", "mount -o remount,rw /", "udhcpc -i " + name + " -b -T 3 -t 3",
                          "mount -o remount,ro /"));
  EXPECT_TRUE(up("lo"));
}

INSTANTIATE_TEST_SUITE_P(Names, InterfaceNameTest,
                         testing::Values("", " ", "no such", "eth9 ", "\"eth9\"", "'eth9", "eth9; echo hello >&2 #",
                                         "$(echo eth9)", "`echo eth9`", "eth9 && echo", "eth9\nfalse", "eth*", "\\",
                                         "-h", "eth9 | cat"));

TEST_F(NetworkTest, ANameWithASemicolonRunsASecondCommand) {
  host().call("NetworkOff", {"eth9; echo second > /tmp/second #"});
  EXPECT_EQ(unit_.text("/tmp/second"), "second\n");
}

TEST_F(NetworkTest, QuotesAreTheShells) {
  unit_.with_network();
  host().call("NetworkOff", {"'eth0'"});
  EXPECT_FALSE(up("eth0"));
}

}  // namespace
