#include "tool/command.h"

#include <gtest/gtest.h>

namespace {

using namespace tool;

TEST(CommandTest, HelpShowsEveryArgumentAndOption) {
  const Command command = {"mend",
                           "Tests",
                           "Mend things",
                           {unit_option(), {"env", 0, "NAME=VALUE", "a variable", true}},
                           {{"THING", "a thing"}, {"MORE", "more things", Count::ANY}},
                           nullptr};
  EXPECT_EQ(help_of(command),
            "Usage: unit mend [OPTION…] THING [MORE…]\n"
            "\n"
            "Mend things.\n"
            "\n"
            "Arguments:\n"
            "  THING  a thing\n"
            "  MORE   more things\n"
            "\n"
            "Options:\n"
            "  -u, --unit NAME       unit to use (default: the only running one)\n"
            "      --env NAME=VALUE  a variable; repeatable\n"
            "  -h, --help            print this help and exit\n"
            "\n"
            "See unit-mend(1).\n");
}

TEST(CommandTest, TheOverviewGroupsCommandsAndLeavesOutHiddenOnes) {
  EXPECT_EQ(overview({{"mend", "Tests", "Mend things", {}, {}, nullptr},
                      {"go", "Others", "Go", {}, {}, nullptr},
                      {"__hidden", "", "Hide", {}, {}, nullptr}}),
            "Usage: unit COMMAND [OPTION…] [ARGUMENT…]\n"
            "\n"
            "Runs and controls simulated units.\n"
            "\n"
            "Tests:\n"
            "  mend      Mend things\n"
            "\n"
            "Others:\n"
            "  go        Go\n"
            "\n"
            "See \"unit COMMAND --help\" and unit(1).\n");
}

}  // namespace
