// Every command has a man page whose options are those of its help.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "tests/doubles/temporary_folder.h"
#include "tool/commands/table.h"

namespace {

using doubles::lines_of;
using doubles::text_of;
using testing::ElementsAreArray;
using testing::HasSubstr;
using tool::Command;
using tool::Option;

std::string page_of(const std::string& name) {
  return MAN_PAGES "/" + name + ".1.scd";
}

/// An option as man pages write it: "*-u*, *--unit* _NAME_".
std::string as_written(const Option& option) {
  const std::string letter = option.letter != 0 ? std::string("*-") + option.letter + "*, " : "";
  return letter + "*--" + option.name + "*" + (option.value.empty() ? "" : " _" + option.value + "_");
}

/// The lines of a page that name options.
std::vector<std::string> options_in(const std::string& page) {
  std::vector<std::string> options;
  bool inside = false;
  for (const std::string& line : lines_of(page)) {
    inside = line.rfind("# ", 0) == 0 ? line == "# OPTIONS" : inside;
    if (inside && line.rfind("*-", 0) == 0) {
      options.push_back(line);
    }
  }
  return options;
}

std::vector<Command> shown_commands() {
  std::vector<Command> shown;
  for (const Command& command : tool::commands()) {
    if (!command.group.empty()) {
      shown.push_back(command);
    }
  }
  return shown;
}

TEST(ManPagesTest, EachPageHasTheOptionsOfTheHelp) {
  for (const Command& command : shown_commands()) {
    std::vector<std::string> options;
    for (const Option& option : command.options) {
      options.push_back(as_written(option));
    }
    options.push_back(as_written(tool::help_option()));
    EXPECT_THAT(options_in(page_of("unit-" + command.name)), ElementsAreArray(options)) << command.name;
  }
}

TEST(ManPagesTest, EachPageNamesItsArguments) {
  for (const Command& command : shown_commands()) {
    const std::string page = text_of(page_of("unit-" + command.name));
    for (const tool::Operand& operand : command.operands) {
      EXPECT_THAT(page, HasSubstr("_" + operand.name)) << command.name;
    }
  }
}

TEST(ManPagesTest, TheOverviewListsEveryCommandWithItsLine) {
  const std::string page = text_of(page_of("unit"));
  for (const Command& command : shown_commands()) {
    EXPECT_THAT(page, HasSubstr("*unit-" + command.name + "*(1)\n\t" + command.help + ".\n"));
  }
}

TEST(ManPagesTest, OptionsAreNotRepeatedInAnyCommand) {
  for (const Command& command : tool::commands()) {
    std::string seen = " help h ";
    for (const Option& option : command.options) {
      EXPECT_EQ(seen.find(" " + option.name + " "), std::string::npos) << command.name << " --" << option.name;
      seen += option.name + " ";
      if (option.letter != 0) {
        EXPECT_EQ(seen.find(std::string(" ") + option.letter + " "), std::string::npos) << command.name;
        seen += std::string(1, option.letter) + " ";
      }
    }
  }
}

}  // namespace
