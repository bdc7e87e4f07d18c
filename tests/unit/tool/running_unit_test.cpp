#include "tool/running_unit.h"

#include <gtest/gtest.h>

#include "simulator/sysroot/state_folder.h"
#include "tests/doubles/temporary_folder.h"
#include "tool/errors.h"

namespace {

using simulator::sysroot::StateFolder;
using tool::CommandError;
using tool::RunningUnit;

TEST(RunningUnitTest, AChosenUnitIsTakenWhileItRuns) {
  const doubles::TemporaryFolder folder;
  RunningUnit unit;
  unit.chosen = folder / "state";
  {
    const StateFolder state = StateFolder::at(unit.chosen);
    state.fill([](simulator::model::UnitModel& model) { model.board().set_handle(11); });
    EXPECT_EQ(unit.state(), unit.chosen);
    EXPECT_EQ(unit.socket(), unit.chosen + "/run/unit/host.sock");
    EXPECT_EQ(unit.model().board().handle(), 11);
  }
  try {
    unit.state();
    FAIL() << "taken";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.status, tool::STATUS_BAD_USAGE);
    EXPECT_EQ(error.what(), unit.chosen + ": no unit is running on this state folder");
  }
}

TEST(RunningUnitTest, SeveralUnitsMustBeChosenFrom) {
  const StateFolder one = StateFolder::make();
  const StateFolder other = StateFolder::make();
  try {
    RunningUnit{}.state();
    FAIL() << "taken";
  } catch (const CommandError& error) {
    const std::string text = error.what();
    EXPECT_EQ(text.rfind("several units are running; choose one with --unit-state:", 0), 0U) << text;
    EXPECT_NE(text.find(" " + one.path().string()), std::string::npos);
    EXPECT_NE(text.find(" " + other.path().string()), std::string::npos);
  }
}

}  // namespace
