#pragma once

#include <string>

#include "tests/unit/simulator/services/unit_with_services.h"

namespace fault_pairs {

/// The one unit of all tests of this program: the program belongs to it, and its services run. Made by the first call,
/// before the simulated closed libraries are used.
class PairsUnit : public services_test::UnitWithServices {
public:
  static PairsUnit& get();

  using UnitWithServices::everybody_engine;
  using UnitWithServices::file;
  using UnitWithServices::gui_manager;
  using UnitWithServices::hw_enumerate;
  using UnitWithServices::model;
  using UnitWithServices::variables;

  /// Ends the services, with every call that they have not answered, and starts them again.
  void restart_services();
  void TestBody() override {}

private:
  PairsUnit();
};

}  // namespace fault_pairs
