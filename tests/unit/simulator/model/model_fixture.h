#pragma once

#include <gtest/gtest.h>

#include "simulator/model/unit_model.h"

#include "tests/doubles/temporary_folder.h"

namespace simulator_test {

/// A new unit for each test.
class ModelTest : public ::testing::Test {
protected:
  doubles::TemporaryFolder folder_;
  std::string path_ = folder_ / "run/unit/model";
  simulator::model::UnitModel unit_ = simulator::model::UnitModel::create(path_);
};

}  // namespace simulator_test
