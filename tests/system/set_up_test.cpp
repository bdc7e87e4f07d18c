// The set-up of a unit before the command of "unit run" starts: network, naming service and services.

#include "tests/system/command_line.h"

namespace {

using namespace system_test;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

/// A shell command's output on a new unit started with these options.
std::string said(std::vector<std::string> options, const std::string& command) {
  options.insert(options.begin(), "run");
  options.insert(options.end(), {"--", "bash", "-c", command});
  const Ending ending = unit_command(options);
  EXPECT_THAT(ending, ExitedWith(0));
  EXPECT_EQ(ending.err, "");
  return ending.out;
}

const char SHOW_LINKS[] = "ip -o link show up";
/// Whether a process listens on the naming service's loopback port.
const char NAMING_SERVICE[] = "0100007F:0AF9 00000000:0000 0A";
const char SHOW_LISTENERS[] = "cat /proc/net/tcp";

TEST(SetUpTest, EveryUnitHasALoopbackWithMulticast) {
  EXPECT_THAT(said({"--without", "network"}, SHOW_LINKS),
              MatchesRegex("1: lo: <LOOPBACK,MULTICAST,UP,LOWER_UP> [^\n]*\n"));
  EXPECT_THAT(said({"--without", "network"}, "ip route show"), MatchesRegex("224\\.0\\.0\\.0/4 dev lo [^\n]*\n"));
}

TEST(SetUpTest, ANetworkIsAnInterfaceWithoutAddressThatIsUp) {
  const std::string links = said({}, SHOW_LINKS);
  EXPECT_THAT(links, ContainsRegex("\n[0-9]+: eth0@"));
  EXPECT_EQ(std::count(links.begin(), links.end(), '\n'), 2) << links;
  EXPECT_EQ(said({}, "ip -4 -o address show eth0"), "");
}

// The far end refuses the connection; without a far end, the address cannot be reached.
TEST(SetUpTest, AtTheFarEndOfTheNetworkThereIsAMachine) {
  EXPECT_THAT(said({}, "ip address add 10.77.0.9/24 dev eth0; { : < /dev/tcp/10.77.0.1/9; } 2>&1; true"),
              HasSubstr("Connection refused"));
}

TEST(SetUpTest, ADhcpServerAnswersBeforeTheCommandRuns) {
  EXPECT_THAT(said({"--dhcp-server"}, "udhcpc -i eth0 -n -q -t 1 -T 10 -s /bin/true 2>&1"),
              ContainsRegex("lease of 10\\.77\\.0\\.[0-9]+ obtained"));
}

TEST(SetUpTest, WithoutADhcpServerNobodyAnswers) {
  EXPECT_THAT(said({}, "udhcpc -i eth0 -n -q -t 1 -T 1 -s /bin/true 2>&1; true"), HasSubstr("no lease"));
}

TEST(SetUpTest, ServicesAreThereBeforeTheCommandRuns) {
  EXPECT_THAT(said({}, SHOW_LISTENERS), HasSubstr(NAMING_SERVICE));
  EXPECT_EQ(said({}, "cat /proc/[0-9]*/comm | grep -cx unit-services"), "1\n");
}

TEST(SetUpTest, WithoutServicesThereIsNoNamingService) {
  EXPECT_THAT(said({"--without", "services"}, SHOW_LISTENERS), Not(HasSubstr(NAMING_SERVICE)));
}

}  // namespace
