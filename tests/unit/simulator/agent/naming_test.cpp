#include "simulator/agent/naming.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>

#include "simulator/model/unit_model.h"

namespace {

/// Runs first: running services would report that they are ready.
TEST(NamingTest, ServicesWhosePortIsNoNumberAreNotWaitedFor) {
  const std::string port = ::getenv("UNIT_NAMING_PORT");
  ::setenv("UNIT_NAMING_PORT", "none", 1);
  try {
    simulator::agent::start_services(STDERR_FILENO);
    FAIL() << "started";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "unit-services exited before it was ready; see services.log");
  }
  ::setenv("UNIT_NAMING_PORT", port.c_str(), 1);
}

TEST(NamingTest, ServicesAreReadyOnceTheyAreStarted) {
  simulator::agent::start_naming(2809, STDERR_FILENO);
  simulator::agent::start_services(STDERR_FILENO);
  auto& services = simulator::model::UnitModel::of_this_unit().services();
  EXPECT_TRUE(services.wait_applied(std::chrono::milliseconds(0)));
}

}  // namespace
