#include "simulator/model/unit_files.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/unit/simulator/model/model_fixture.h"

namespace {

using doubles::text_of;
using simulator::model::Fault;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::SysfsFile;

class UnitFilesTest : public simulator_test::ModelTest {
protected:
  void arm(Point point, FaultKind kind, std::int32_t value = 0) { unit_.faults().arm(point, {kind, value}); }
  void disarm(Point point) { unit_.faults().arm(point, Fault{}); }

  const SysfsFile& celsius_ = simulator::model::sysfs_files()[3];
  const SysfsFile& brightness_ = simulator::model::sysfs_files()[5];
  const std::string celsius_path_ = folder_ / "sys/class/hwmon/hwmon0/device/celsius";
  const std::string brightness_path_ = folder_ / "sys/class/backlight/omap-bl/brightness";
  const std::string mic284_path_ = folder_ / "tmp/MIC284";
};

TEST_F(UnitFilesTest, AFileThatFailsKeepsItsTextUntilItWorksAgain) {
  unit_.files().set_text(celsius_, "38.5\n");
  arm(Point::FILE_CELSIUS, FaultKind::FAIL);
  EXPECT_FALSE(std::ifstream(celsius_path_).is_open());
  EXPECT_EQ(unit_.files().text(celsius_), "38.5\n");
  disarm(Point::FILE_CELSIUS);
  EXPECT_EQ(text_of(celsius_path_), "38.5\n");
}

TEST_F(UnitFilesTest, AGarbledFileShowsTheValueAndKeepsItsText) {
  unit_.files().set_text(celsius_, "38.5\n");
  arm(Point::FILE_CELSIUS, FaultKind::GARBAGE, 77);
  EXPECT_EQ(text_of(celsius_path_), "77\n");
  EXPECT_EQ(unit_.files().text(celsius_), "38.5\n");
  disarm(Point::FILE_CELSIUS);
  EXPECT_EQ(text_of(celsius_path_), "38.5\n");
}

TEST_F(UnitFilesTest, AStuckFileShowsTheTextThatItHadWhenItGotStuck) {
  unit_.files().set_text(celsius_, "38.5\n");
  arm(Point::FILE_CELSIUS, FaultKind::STUCK);
  unit_.files().set_text(celsius_, "40\n");
  EXPECT_EQ(text_of(celsius_path_), "38.5\n");
  EXPECT_EQ(unit_.files().text(celsius_), "40\n");
  disarm(Point::FILE_CELSIUS);
  EXPECT_EQ(text_of(celsius_path_), "40\n");
}

TEST_F(UnitFilesTest, ATextSetMeanwhileShowsOnceTheFaultIsGone) {
  for (const FaultKind kind : {FaultKind::FAIL, FaultKind::GARBAGE}) {
    unit_.files().set_text(celsius_, "38.5\n");
    arm(Point::FILE_CELSIUS, kind);
    const std::string shown = text_of(celsius_path_);
    unit_.files().set_text(celsius_, "40\n");
    EXPECT_EQ(text_of(celsius_path_), shown);
    disarm(Point::FILE_CELSIUS);
    EXPECT_EQ(text_of(celsius_path_), "40\n");
  }
}

TEST_F(UnitFilesTest, AFaultOnAMissingFileLeavesItMissing) {
  for (const FaultKind kind : {FaultKind::FAIL, FaultKind::GARBAGE, FaultKind::STUCK}) {
    arm(Point::FILE_CELSIUS, kind);
    EXPECT_EQ(unit_.files().text(celsius_), std::nullopt);
    disarm(Point::FILE_CELSIUS);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(celsius_path_)));
  }
}

TEST_F(UnitFilesTest, AnotherFaultKeepsTheSameText) {
  unit_.files().set_text(celsius_, "38.5\n");
  arm(Point::FILE_CELSIUS, FaultKind::GARBAGE, 77);
  arm(Point::FILE_CELSIUS, FaultKind::FAIL);
  EXPECT_FALSE(std::ifstream(celsius_path_).is_open());
  arm(Point::FILE_CELSIUS, FaultKind::STUCK);
  EXPECT_EQ(text_of(celsius_path_), "38.5\n");
  disarm(Point::FILE_CELSIUS);
  EXPECT_EQ(text_of(celsius_path_), "38.5\n");
}

TEST_F(UnitFilesTest, WhatAProgramWritesOverGarbageStays) {
  unit_.files().set_text(brightness_, "100\n");
  arm(Point::FILE_BRIGHTNESS, FaultKind::GARBAGE, 7);
  doubles::write_text(brightness_path_, "255");
  EXPECT_EQ(unit_.files().text(brightness_), "255");
  disarm(Point::FILE_BRIGHTNESS);
  EXPECT_EQ(text_of(brightness_path_), "255");
}

TEST_F(UnitFilesTest, AProgramCannotWriteAFileThatFails) {
  unit_.files().set_text(brightness_, "100\n");
  arm(Point::FILE_BRIGHTNESS, FaultKind::FAIL);
  EXPECT_FALSE(std::ofstream(brightness_path_).is_open());
  disarm(Point::FILE_BRIGHTNESS);
  EXPECT_EQ(text_of(brightness_path_), "100\n");
}

TEST_F(UnitFilesTest, TheOutputOfI2cReadCanFail) {
  arm(Point::FILE_MIC284, FaultKind::FAIL);
  EXPECT_FALSE(std::ofstream(mic284_path_).is_open());
  EXPECT_FALSE(std::ifstream(mic284_path_).is_open());
  disarm(Point::FILE_MIC284);
  doubles::write_text(mic284_path_, "1a\n");
  EXPECT_EQ(text_of(mic284_path_), "1a\n");
}

TEST_F(UnitFilesTest, ATextTooLongToBeKeptIsRefused) {
  doubles::write_text(folder_ / "long", "");
  unit_.files().set_text(celsius_, std::string(4096, 'x'));
  try {
    arm(Point::FILE_CELSIUS, FaultKind::FAIL);
    ADD_FAILURE() << "armed";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "file.celsius: the file holds more than 4095 bytes");
  }
  EXPECT_EQ(text_of(celsius_path_), std::string(4096, 'x'));
  EXPECT_EQ(unit_.faults().armed_at(Point::FILE_CELSIUS).kind, FaultKind::NONE);
}

TEST_F(UnitFilesTest, ARefusedFaultLeavesTheFileAlone) {
  unit_.files().set_text(celsius_, "38.5\n");
  EXPECT_THROW(arm(Point::FILE_CELSIUS, FaultKind::SLOW), std::invalid_argument);
  EXPECT_THROW(unit_.faults().arm(Point::FILE_CELSIUS, {FaultKind::FAIL, 0, 2}), std::invalid_argument);
  EXPECT_EQ(text_of(celsius_path_), "38.5\n");
}

}  // namespace
