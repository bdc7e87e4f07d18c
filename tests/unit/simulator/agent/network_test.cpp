#include "simulator/agent/network.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <unistd.h>

#include <stdexcept>

#include "simulator/process/child_process.h"

namespace {

TEST(NetworkTest, TheInterfaceReachesTheDhcpServer) {
  ASSERT_EQ(::if_nametoindex("eth0"), 0U);
  simulator::agent::make_eth0(true, STDERR_FILENO);
  EXPECT_NE(::if_nametoindex("eth0"), 0U);
  EXPECT_EQ(simulator::process::run_program({"udhcpc", "-i", "eth0", "-n", "-q", "-f", "-s", "/bin/true"}), 0);
}

TEST(NetworkTest, ASecondInterfaceOfThatNameIsRefused) {
  if (::if_nametoindex("eth0") == 0) {
    simulator::agent::make_eth0(false, STDERR_FILENO);
  }
  try {
    simulator::agent::make_eth0(false, STDERR_FILENO);
    FAIL() << "made";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "cannot create eth0: this machine's kernel provides no virtual interface pair (veth)");
  }
}

}  // namespace
