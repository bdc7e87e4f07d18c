#include "simulator/sysroot/init_orders.h"

#include <gtest/gtest.h>

namespace {

using simulator::sysroot::Orders;
using simulator::sysroot::read_orders;
using Words = std::vector<std::string>;

TEST(InitOrdersTest, TheCommandAloneWantsNeitherServicesNorNetwork) {
  const std::optional<Orders> orders = read_orders({"--lifeline", "7", "--", "sh", "-c", "--"});
  ASSERT_TRUE(orders);
  EXPECT_EQ(orders->lifeline, 7);
  EXPECT_EQ(orders->naming_port, 0);
  EXPECT_FALSE(orders->network);
  EXPECT_FALSE(orders->dhcp_server);
  EXPECT_EQ(orders->command, (Words{"sh", "-c", "--"}));
}

TEST(InitOrdersTest, EveryOptionIsTaken) {
  const std::optional<Orders> orders =
      read_orders({"--services", "2809", "--network", "--dhcp-server", "--lifeline", "0", "--", "true"});
  ASSERT_TRUE(orders);
  EXPECT_EQ(orders->lifeline, 0);
  EXPECT_EQ(orders->naming_port, 2809);
  EXPECT_TRUE(orders->network);
  EXPECT_TRUE(orders->dhcp_server);
}

TEST(InitOrdersTest, WhatIsIncompleteOrUnknownIsRefused) {
  const std::vector<Words> refused = {
      {},
      {"--lifeline", "7"},
      {"--lifeline", "7", "--"},
      {"--", "true"},
      {"--lifeline", "--", "true"},
      {"--lifeline", "x", "--", "true"},
      {"--lifeline", "-1", "--", "true"},
      {"--lifeline", "7", "--services", "65536", "--", "true"},
      {"--lifeline", "7", "--services", "80x", "--", "true"},
      {"--lifeline", "7", "--colour", "--", "true"},
      {"--lifeline", "7", "true"},
  };
  for (const Words& arguments : refused) {
    EXPECT_FALSE(read_orders(arguments)) << testing::PrintToString(arguments);
  }
}

}  // namespace
