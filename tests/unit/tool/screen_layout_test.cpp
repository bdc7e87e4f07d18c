#include "tool/screen_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/text.h"

namespace {

using namespace tool;
using testing::ElementsAre;
using testing::HasSubstr;

/// The widest picture of a unit.
Picture full_picture() {
  Picture picture;
  picture.title = "unit-1   Ctrl-C stops it";
  picture.sections = {{"Versions", {}}, {"Temperatures", {}}, {"Power", {}}};
  for (int i = 0; i < 10; ++i) {
    picture.sections[0].rows.emplace_back("Digital Board Firmware Version", "2.05.13 ");
  }
  for (int i = 0; i < 6; ++i) {
    picture.sections[1].rows.emplace_back("Power Supply Temperature", "25.30 °C");
    picture.sections[2].rows.emplace_back("Power supply temperature", "25.30 °C");
  }
  for (int i = 0; i < 50; ++i) {
    picture.output.push_back("line " + std::to_string(i) + std::string(100, 'x'));
  }
  return picture;
}

TEST(ScreenLayoutTest, EveryPictureFitsItsTerminal) {
  Picture picture = full_picture();
  picture.notices = {"GetTemperature: no answer for 3 s", "Dialog", "Answer it with: unit answer -u unit-1 Ok"};
  for (const TerminalSize size :
       {TerminalSize{24, 80}, TerminalSize{50, 132}, TerminalSize{24, 79}, TerminalSize{10, 40}, TerminalSize{5, 20},
        TerminalSize{2, 2}, TerminalSize{1, 1}, TerminalSize{0, 0}}) {
    const std::vector<std::string> lines = laid_out(picture, size);
    EXPECT_LE(lines.size(), static_cast<std::size_t>(std::max(1, size.rows))) << size.columns << "x" << size.rows;
    for (const std::string& line : lines) {
      EXPECT_LE(width(line), static_cast<std::size_t>(std::max(1, size.columns))) << line;
    }
  }
}

TEST(ScreenLayoutTest, AUsualTerminalShowsEverythingInTwoColumns) {
  const std::vector<std::string> lines = laid_out(full_picture(), {24, 80});
  ASSERT_EQ(lines.size(), 24U);
  EXPECT_EQ(lines[0], "unit-1   Ctrl-C stops it");
  EXPECT_EQ(lines[2], "Versions                                     Temperatures");
  EXPECT_EQ(lines[3], " Digital Board Firmware Version  2.05.13      Power Supply Temperature  25.30 °C");
  EXPECT_EQ(lines[9], " Digital Board Firmware Version  2.05.13 ");
  EXPECT_EQ(lines[10], " Digital Board Firmware Version  2.05.13     Power");
  EXPECT_EQ(lines[18], "Host output");
  EXPECT_THAT(lines[23], HasSubstr(" line 49xxx"));
}

TEST(ScreenLayoutTest, ALongValueMovesTowardsItsName) {
  Picture picture;
  picture.sections = {
      {"Versions", {{"Digital Board Firmware Version", "2"}, {"RF Firmware Version", "1.02.03 alpha"}}}};
  EXPECT_THAT(laid_out(picture, {24, 40}), ElementsAre("", "", "Versions", " Digital Board Firmware Version  2",
                                                       " RF Firmware Version       1.02.03 alpha"));
}

TEST(ScreenLayoutTest, NoticesComeBeforeTheValues) {
  Picture picture = full_picture();
  picture.notices = {"GetTemperature: no answer for 3 s"};
  EXPECT_EQ(laid_out(picture, {24, 80})[1], "GetTemperature: no answer for 3 s");
  EXPECT_THAT(laid_out(picture, {2, 80}), ElementsAre("unit-1   Ctrl-C stops it", "GetTemperature: no answer for 3 s"));
}

TEST(ScreenLayoutTest, WhatIsCutIsSaidToBe) {
  Picture picture = full_picture();
  picture.output.clear();
  const std::vector<std::string> lines = laid_out(picture, {10, 60});
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_EQ(lines[9], "… 19 more lines");
}

TEST(ScreenLayoutTest, OutputCannotControlTheTerminal) {
  Picture picture;
  picture.title = "unit-1";
  picture.output = {"a\x1b[2Jb"};
  EXPECT_THAT(laid_out(picture, {24, 80}), ElementsAre("unit-1", "", "Host output", " a\\x1b[2Jb"));
}

}  // namespace
