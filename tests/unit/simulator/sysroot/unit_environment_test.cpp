#include "simulator/sysroot/unit_environment.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/doubles/temporary_folder.h"

namespace {

using simulator::sysroot::StateFolder;

class UnitEnvironmentTest : public ::testing::Test {
protected:
  UnitEnvironmentTest() { state_.fill({}); }

  StateFolder state_ = StateFolder::make();
};

TEST_F(UnitEnvironmentTest, NamesTheUnitAndItsNamingService) {
  const auto rows = simulator::sysroot::unit_environment(state_, 2810);
  const std::map<std::string, std::string> variables(rows.begin(), rows.end());
  EXPECT_EQ(variables.size(), rows.size());
  EXPECT_EQ(variables.at("UNIT_RUN"), "/run/unit");
  EXPECT_EQ(variables.at("UNIT_NAMING_PORT"), "2810");
  EXPECT_EQ(variables.at("HOME"), "/root");
  EXPECT_EQ(variables.at("OMNIORB_CONFIG"), "/dev/null");
}

TEST_F(UnitEnvironmentTest, KeepsBothEnginesOnTheLoopbackInterface) {
  const auto rows = simulator::sysroot::unit_environment(state_, 2810);
  const std::map<std::string, std::string> variables(rows.begin(), rows.end());
  EXPECT_NE(variables.at("CYCLONEDDS_URI").find("<NetworkInterface name=\"lo\""), std::string::npos);
  EXPECT_EQ(variables.at("DCPSConfigFile"), "/run/unit/rtps.ini");
  const std::string ini = doubles::text_of(state_.run() / "rtps.ini");
  EXPECT_NE(ini.find("\nMulticastInterface=lo\n"), std::string::npos);
  EXPECT_NE(ini.find("\nlocal_address=127.0.0.1:0\n"), std::string::npos);
}

}  // namespace
