#include "tests/unit/simulator/faults/pairs_unit.h"

#include <signal.h>
#include <stdlib.h>

namespace fault_pairs {

PairsUnit& PairsUnit::get() {
  static PairsUnit unit;
  return unit;
}

PairsUnit::PairsUnit() {
  ::setenv("UNIT_RUN", file("run/unit").c_str(), 1);
  ::setenv("UNIT_NAMING_PORT", std::to_string(naming_port()).c_str(), 1);
  start_services();
}

void PairsUnit::restart_services() {
  services_->send(SIGTERM);
  services_->wait();
  start_services();
  // The model says that the services were there, not that they are again.
  for (const auto& path :
       {services_test::GUI_MANAGER_PATH, services_test::EVERYBODY_ENGINE_PATH, services_test::HW_ENUMERATE_PATH}) {
    EXPECT_TRUE(services_test::comes_true([&] { return bound(path); }));
  }
}

}  // namespace fault_pairs
