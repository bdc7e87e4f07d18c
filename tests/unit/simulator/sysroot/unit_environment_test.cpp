#include "simulator/sysroot/unit_environment.h"

#include <gtest/gtest.h>

#include <map>

namespace {

std::map<std::string, std::string> variables(int naming_port) {
  const auto rows = simulator::sysroot::unit_environment(naming_port);
  std::map<std::string, std::string> variables(rows.begin(), rows.end());
  EXPECT_EQ(variables.size(), rows.size());
  return variables;
}

TEST(UnitEnvironmentTest, NamesTheUnitAndItsNamingService) {
  const auto all = variables(2810);
  EXPECT_EQ(all.at("UNIT_RUN"), "/run/unit");
  EXPECT_EQ(all.at("UNIT_NAMING_PORT"), "2810");
  EXPECT_EQ(all.at("HOME"), "/root");
  EXPECT_EQ(all.at("OMNIORB_CONFIG"), "/dev/null");
}

TEST(UnitEnvironmentTest, CommandsOfTheUnitComeBeforeThoseOfTheMachine) {
  EXPECT_EQ(variables(2809).at("PATH").rfind("/opt/unit/bin/commands:/usr/local/sbin:", 0), 0U);
}

TEST(UnitEnvironmentTest, KeepsBothEnginesOnTheLoopbackInterface) {
  const auto all = variables(2809);
  EXPECT_NE(all.at("CYCLONEDDS_URI").find("<NetworkInterface name=\"lo\""), std::string::npos);
  EXPECT_EQ(all.at("DCPSConfigFile"), "/run/unit/rtps.ini");
}

}  // namespace
