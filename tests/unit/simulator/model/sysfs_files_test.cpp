#include "simulator/model/sysfs_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/doubles/temporary_folder.h"

namespace {

using doubles::text_of;
using simulator::model::sysfs_files;
using simulator::model::SysfsFile;
using simulator::model::SysfsFiles;

class SysfsFilesTest : public ::testing::Test {
protected:
  const SysfsFile& named(std::string_view name) {
    for (const SysfsFile& file : sysfs_files()) {
      if (file.name == name) {
        return file;
      }
    }
    throw std::out_of_range(std::string(name));
  }

  doubles::TemporaryFolder folder_;
  SysfsFiles files_{folder_ / "sys"};
};

TEST_F(SysfsFilesTest, TheFilesStandWhereTheUnitHasThem) {
  EXPECT_EQ(named("FPGA_ver").path, "class/omappci/FPGA_ver");
  EXPECT_EQ(named("Board_rev").path, "class/omappci/Board_rev");
  EXPECT_EQ(named("CPLD_ver").path, "bus/platform/devices/omap-jtag/CPLD_ver");
  EXPECT_EQ(named("celsius").path, "class/hwmon/hwmon0/device/celsius");
  EXPECT_EQ(named("max_brightness").path, "class/backlight/omap-bl/max_brightness");
  EXPECT_EQ(named("brightness").path, "class/backlight/omap-bl/brightness");
  EXPECT_EQ(named("bl_power").path, "class/backlight/omap-bl/bl_power");
}

TEST_F(SysfsFilesTest, ATextIsTheFileNothingMore) {
  files_.set_text(named("celsius"), "38.5");
  EXPECT_EQ(text_of(folder_ / "sys/class/hwmon/hwmon0/device/celsius"), "38.5");
  EXPECT_EQ(files_.text(named("celsius")), "38.5");
  files_.set_text(named("celsius"), "");
  EXPECT_EQ(files_.text(named("celsius")), "");
}

TEST_F(SysfsFilesTest, WhatAProgramWritesShows) {
  files_.set_text(named("bl_power"), "1\n");
  doubles::write_text(folder_ / "sys/class/backlight/omap-bl/bl_power", "0");
  EXPECT_EQ(files_.text(named("bl_power")), "0");
}

TEST_F(SysfsFilesTest, AnAbsentFileHasNoText) {
  EXPECT_EQ(files_.text(named("celsius")), std::nullopt);
  files_.set_text(named("celsius"), "38.5");
  files_.set_text(named("celsius"), std::nullopt);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "sys/class/hwmon/hwmon0/device/celsius"));
  files_.set_text(named("celsius"), std::nullopt);
}

TEST_F(SysfsFilesTest, AReaderOfTheOldTextKeepsIt) {
  files_.set_text(named("celsius"), "old");
  std::ifstream reader(folder_ / "sys/class/hwmon/hwmon0/device/celsius");
  files_.set_text(named("celsius"), "new");
  std::string word;
  reader >> word;
  EXPECT_EQ(word, "old");
  EXPECT_EQ(files_.text(named("celsius")), "new");
}

TEST_F(SysfsFilesTest, NothingIsLeftBesideTheFile) {
  files_.set_text(named("celsius"), "38.5");
  const std::filesystem::directory_iterator entries(folder_ / "sys/class/hwmon/hwmon0/device");
  EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(SysfsFilesTest, ABlockedFileCanNeitherBeReadNorWritten) {
  const std::string path = folder_ / "sys/class/backlight/omap-bl/brightness";
  files_.set_text(named("brightness"), "100\n");
  files_.block(named("brightness"));
  EXPECT_FALSE(std::ifstream(path).is_open());
  EXPECT_FALSE(std::ofstream(path).is_open());
  EXPECT_EQ(files_.text(named("brightness")), std::nullopt);
  files_.set_text(named("brightness"), "7\n");
  EXPECT_EQ(text_of(path), "7\n");
}

TEST_F(SysfsFilesTest, AFileThatIsNoRegularOneHasNoText) {
  const std::string path = folder_ / "sys/class/omappci/Board_rev";
  std::filesystem::create_directories(path);
  EXPECT_EQ(files_.text(named("Board_rev")), std::nullopt);
  std::filesystem::remove(path);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(files_.text(named("Board_rev")), std::nullopt);
  std::filesystem::remove(path);
  doubles::write_text(folder_ / "secret", "secret");
  std::filesystem::create_symlink(folder_ / "secret", path);
  EXPECT_EQ(files_.text(named("Board_rev")), std::nullopt);
  files_.set_text(named("Board_rev"), "3\n");
  EXPECT_EQ(text_of(folder_ / "secret"), "secret");
  EXPECT_EQ(text_of(path), "3\n");
}

TEST_F(SysfsFilesTest, OfALargeFileTheStartIsTheText) {
  files_.set_text(named("celsius"), std::string(100'000, 'x'));
  EXPECT_EQ(files_.text(named("celsius")), std::string(65'536, 'x'));
}

TEST_F(SysfsFilesTest, ATextThatCannotBeWrittenChangesNothing) {
  files_.set_text(named("celsius"), "38.5");
  std::filesystem::create_directories(folder_ / "other/class");
  doubles::write_text(folder_ / "other/class/hwmon", "a file where a folder must be");
  EXPECT_THROW(SysfsFiles(folder_ / "other").set_text(named("celsius"), "1"), std::system_error);
  EXPECT_EQ(files_.text(named("celsius")), "38.5");
}

}  // namespace
