#include "tests/contract/simulated_unit.h"

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace contract {
namespace {

/// The run folder of the unit, removed at exit.
struct RunFolder {
  RunFolder() {
    if (::mkdtemp(path.data()) == nullptr) {
      throw std::runtime_error(path);
    }
    simulator::model::UnitModel::create(path + "/model");
    ::setenv("UNIT_RUN", path.c_str(), 1);
  }
  ~RunFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  RunFolder(const RunFolder&) = delete;
  RunFolder& operator=(const RunFolder&) = delete;

  std::string path = "/tmp/unit-contract-XXXXXX";
};

}  // namespace

simulator::model::UnitModel& simulated_unit() {
  static const RunFolder folder;
  return simulator::model::UnitModel::of_this_unit();
}

}  // namespace contract
