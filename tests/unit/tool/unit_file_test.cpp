#include "tool/unit_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/doubles/temporary_folder.h"
#include "tool/errors.h"

namespace {

using tool::unit_file_text;

std::string refusal(const std::string& path) {
  try {
    return unit_file_text(path);
  } catch (const tool::UsageError& error) {
    return error.what();
  }
}

TEST(UnitFileTest, AUnitFileIsARegularFileOfAtMostOneMebibyte) {
  const doubles::TemporaryFolder folder;
  const std::string file = folder / "unit.json";
  const auto reason = [&file] { return refusal(file).substr(file.size() + 2); };
  EXPECT_EQ(reason(), "cannot be read: No such file or directory");
  doubles::write_text(file, std::string(1024 * 1024, ' '));
  EXPECT_EQ(unit_file_text(file).size(), 1024U * 1024U);
  doubles::write_text(file, std::string(1024 * 1024 + 1, ' '));
  EXPECT_EQ(reason(), "larger than 1048576 bytes");
  doubles::write_text(file, "{\n \"\x80\":1}");
  EXPECT_EQ(reason(), "line 2, column 3: byte that is not UTF-8");
  std::filesystem::remove(file);
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(reason(), "not a regular file");
  EXPECT_EQ(refusal("/dev/zero"), "/dev/zero: not a regular file");
  EXPECT_EQ(refusal("/tmp"), "/tmp: not a regular file");
}

}  // namespace
