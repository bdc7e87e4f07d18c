#include "simulator/sysroot/network.h"

#include <gtest/gtest.h>
#include <net/if.h>

#include <stdexcept>

#include "simulator/process/child_process.h"

namespace {

TEST(NetworkTest, TheInterfaceReachesTheDhcpServer) {
  ASSERT_EQ(::if_nametoindex("eth0"), 0U);
  simulator::sysroot::make_eth0(true);
  EXPECT_NE(::if_nametoindex("eth0"), 0U);
  EXPECT_EQ(simulator::process::run_program({"udhcpc", "-i", "eth0", "-n", "-q", "-f", "-s", "/bin/true"}), 0);
}

TEST(NetworkTest, ASecondInterfaceOfThatNameIsRefused) {
  if (::if_nametoindex("eth0") == 0) {
    simulator::sysroot::make_eth0(false);
  }
  try {
    simulator::sysroot::make_eth0(false);
    FAIL() << "made";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "cannot create eth0: this machine's kernel provides no virtual interface pair (veth)");
  }
}

}  // namespace
