#include "simulator/model/unit_model.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using simulator::model::UnitModel;

class UnitModelTest : public simulator_test::ModelTest {};

TEST_F(UnitModelTest, EveryoneWhoOpensItSeesTheSameUnit) {
  UnitModel other = UnitModel::open(path_);
  other.board().write(1, 0, 4711);
  unit_.power_supply().set_led_status(12);
  EXPECT_EQ(unit_.board().read(1, 0), 4711U);
  EXPECT_EQ(other.power_supply().led_status(), 12);
}

TEST_F(UnitModelTest, AnotherProcessSeesTheSameUnit) {
  const pid_t child = ::fork();
  if (child == 0) {
    UnitModel::open(path_).board().write(1, 0, 4712);
    ::_exit(0);
  }
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(unit_.board().read(1, 0), 4712U);
}

TEST_F(UnitModelTest, ANewUnitTakesTheOldOnesPlace) {
  unit_.board().write(1, 0, 1);
  UnitModel fresh = UnitModel::create(path_);
  EXPECT_EQ(fresh.board().read(1, 0), 0U);
  EXPECT_EQ(unit_.board().read(1, 0), 1U);
  EXPECT_EQ(UnitModel::open(path_).board().read(1, 0), 0U);
}

TEST_F(UnitModelTest, ANewUnitHasOnlyItsOwnSysfsFiles) {
  const auto& celsius = simulator::model::sysfs_files()[3];
  unit_.files().set_text(celsius, "20");
  UnitModel::create(path_);
  EXPECT_EQ(unit_.files().text(celsius), std::nullopt);
}

TEST_F(UnitModelTest, KnowsItsFolders) {
  const auto& celsius = simulator::model::sysfs_files()[3];
  EXPECT_EQ(unit_.run_folder(), folder_ / "run/unit");
  unit_.files().set_text(celsius, "20");
  EXPECT_EQ(doubles::text_of(folder_ / "sys/class/hwmon/hwmon0/device/celsius"), "20");
  UnitModel elsewhere = UnitModel::create(folder_ / "elsewhere/model");
  elsewhere.files().set_text(celsius, "21");
  EXPECT_EQ(doubles::text_of(folder_ / "elsewhere/sys/class/hwmon/hwmon0/device/celsius"), "21");
}

TEST_F(UnitModelTest, AMissingFileIsRefused) {
  try {
    UnitModel::open(folder_ / "none");
    FAIL() << "opened";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.what(), (folder_ / "none") + ": No such file or directory");
  }
}

TEST_F(UnitModelTest, AFileThatIsNoModelIsRefused) {
  const std::string other = folder_ / "other";
  doubles::write_text(other, "short");
  try {
    UnitModel::open(other);
    FAIL() << "opened";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), other + ": not a unit model of this version");
  }
  std::filesystem::resize_file(other, std::filesystem::file_size(path_));
  EXPECT_THROW(UnitModel::open(other), std::runtime_error);
}

TEST_F(UnitModelTest, AModelOfAnotherVersionIsRefused) {
  const std::string whole = doubles::text_of(path_);
  for (const std::size_t place : {0U, 8U, 12U}) {
    std::string other = whole;
    other[place] = static_cast<char>(other[place] ^ 1);
    doubles::write_text(folder_ / "other", other);
    EXPECT_THROW(UnitModel::open(folder_ / "other"), std::runtime_error) << place;
  }
  doubles::write_text(folder_ / "other", whole);
  EXPECT_NO_THROW(UnitModel::open(folder_ / "other"));
}

TEST_F(UnitModelTest, ThisProcesssUnitIsTheOneOfItsRunFolder) {
  ::setenv("UNIT_RUN", (folder_ / "nowhere").c_str(), 1);
  EXPECT_THROW(UnitModel::of_this_unit(), std::system_error);
  ::setenv("UNIT_RUN", (folder_ / "run/unit").c_str(), 1);
  UnitModel& this_unit = UnitModel::of_this_unit();
  this_unit.board().write(1, 0, 5);
  EXPECT_EQ(unit_.board().read(1, 0), 5U);
  EXPECT_EQ(&UnitModel::of_this_unit(), &this_unit);
}

}  // namespace
