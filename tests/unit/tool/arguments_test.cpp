#include "tool/arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/errors.h"

namespace {

using namespace tool;
using testing::ElementsAre;
using testing::IsEmpty;

Command command() {
  return {"mend",
          "Tests",
          "Mend things",
          {unit_option(),
           {"env", 'e', "NAME=VALUE", "a variable", true},
           {"follow", 'f', "", "follow"},
           {"timeout", 0, "SECONDS", "a limit"}},
          {{"THING", "a thing"}, {"MORE", "more things", Count::ANY}},
          nullptr};
}

Arguments parsed(const std::vector<std::string>& words) {
  return Arguments::parse(command(), words);
}

std::string refusal(const Command& of, const std::vector<std::string>& words) {
  try {
    Arguments::parse(of, words);
  } catch (const UsageError& error) {
    return error.what();
  }
  return "accepted";
}

TEST(ArgumentsTest, OptionsMayStandAnywhere) {
  const Arguments arguments = parsed({"-u", "one", "door", "--timeout=3", "window", "-f", "--env", "A=1", "-eB=2"});
  EXPECT_EQ(arguments.command(), "mend");
  EXPECT_EQ(arguments.value("unit"), "one");
  EXPECT_EQ(arguments.text("timeout"), "3");
  EXPECT_TRUE(arguments.has("follow"));
  EXPECT_THAT(arguments.all("env"), ElementsAre("A=1", "B=2"));
  EXPECT_EQ(arguments.text("THING"), "door");
  EXPECT_THAT(arguments.all("MORE"), ElementsAre("window"));
}

TEST(ArgumentsTest, WithoutOptionsThereAreNone) {
  const Arguments arguments = parsed({"door"});
  EXPECT_FALSE(arguments.has("unit"));
  EXPECT_EQ(arguments.value("unit"), std::nullopt);
  EXPECT_THAT(arguments.all("MORE"), IsEmpty());
}

TEST(ArgumentsTest, LettersMayShareAWord) {
  const Arguments arguments = parsed({"-fuone", "door"});
  EXPECT_TRUE(arguments.has("follow"));
  EXPECT_EQ(arguments.text("unit"), "one");
}

TEST(ArgumentsTest, WordsAreTakenVerbatim) {
  EXPECT_THAT(parsed({"[a,b]", R"([{"name":"x","celsius":1}])", "", "-5", "-0x1", "-.5", "-", "--", "--follow", "-u"})
                  .all("MORE"),
              ElementsAre(R"([{"name":"x","celsius":1}])", "", "-5", "-0x1", "-.5", "-", "--follow", "-u"));
}

TEST(ArgumentsTest, ACommandLineIsPassedOnWhole) {
  Command passing = command();
  passing.passes_on = true;
  const Arguments arguments = Arguments::parse(passing, {"-f", "ls", "-u", "--", "-x"});
  EXPECT_EQ(arguments.text("THING"), "ls");
  EXPECT_THAT(arguments.all("MORE"), ElementsAre("-u", "--", "-x"));
  EXPECT_EQ(Arguments::parse(passing, {"--", "-f"}).text("THING"), "-f");
}

TEST(ArgumentsTest, AnOptionalOperandMayStandFirst) {
  Command answer = command();
  answer.operands = {{"TITLE", "", Count::AT_MOST_ONE}, {"LABEL", ""}};
  EXPECT_FALSE(Arguments::parse(answer, {"Ok"}).has("TITLE"));
  EXPECT_EQ(Arguments::parse(answer, {"Ok"}).text("LABEL"), "Ok");
  EXPECT_EQ(Arguments::parse(answer, {"Prompt", "Ok"}).text("TITLE"), "Prompt");
}

TEST(ArgumentsTest, BadUsageIsRefused) {
  const std::string see = "; see \"unit mend --help\"";
  EXPECT_EQ(refusal(command(), {}), "THING is missing" + see);
  EXPECT_EQ(refusal(command(), {"a", "--colour"}), "unknown option --colour" + see);
  EXPECT_EQ(refusal(command(), {"a", "--folow"}), "unknown option --folow; did you mean --follow?" + see);
  EXPECT_EQ(refusal(command(), {"a", "-x"}), "unknown option -x" + see);
  EXPECT_EQ(refusal(command(), {"a", "--unit"}), "--unit: NAME is missing");
  EXPECT_EQ(refusal(command(), {"a", "--follow=yes"}), "--follow: takes no value");
  EXPECT_EQ(refusal(command(), {"a", "-u", "x", "--unit", "y"}), "--unit: given twice");
  EXPECT_EQ(refusal(command(), {"a", "\xff"}), "argument 2: not valid UTF-8: \\xff");
  EXPECT_EQ(refusal(command(), {"a", "-u", "\xff"}), "-u: not valid UTF-8: \\xff");
  Command one = command();
  one.operands = {{"THING", ""}};
  EXPECT_EQ(refusal(one, {"a", "b\n"}), "unexpected argument \"b\\n\"" + see);
}

TEST(ArgumentsTest, HelpIsGivenHoweverTheRestLooks) {
  EXPECT_TRUE(parsed({"--help"}).has("help"));
  EXPECT_TRUE(parsed({"-h"}).has("help"));
}

TEST(ArgumentsTest, UndescribedNamesAreAMistakeOfTheProgram) {
  EXPECT_THROW(parsed({"door"}).has("colour"), std::logic_error);
}

}  // namespace
