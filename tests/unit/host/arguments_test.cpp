#include "host/arguments.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace host {
namespace {

using nlohmann::json;

/// The accessor's message for rejected arguments; empty if it accepts them.
template <typename Accessor>
std::string refusal(const json& values, Accessor accessor) {
  const std::string call = "Op";
  try {
    accessor(Arguments(call, values));
  } catch (const RequestError& error) {
    return error.what();
  }
  return {};
}

TEST(ArgumentsTest, TakesEveryNumberOf32BitsAndRefusesTheNext) {
  const auto number = [](const Arguments& arguments) { arguments.number(0, "n"); };
  EXPECT_EQ(refusal({2147483647}, number), "");
  EXPECT_EQ(refusal({-2147483648LL}, number), "");
  EXPECT_EQ(refusal({2147483648LL}, number), "Op: argument 1 (n): expected a signed 32-bit integer, got 2147483648");
  EXPECT_EQ(refusal({-2147483649LL}, number), "Op: argument 1 (n): expected a signed 32-bit integer, got -2147483649");
  EXPECT_EQ(refusal({1.5}, number), "Op: argument 1 (n): expected a signed 32-bit integer, got 1.5");
}

TEST(ArgumentsTest, TakesEveryWordOf32BitsAndRefusesTheNext) {
  const auto word = [](const Arguments& arguments) { arguments.word(1, "w"); };
  EXPECT_EQ(refusal({0, 4294967295U}, word), "");
  EXPECT_EQ(refusal({0, 4294967296ULL}, word),
            "Op: argument 2 (w): expected an unsigned 32-bit integer, got 4294967296");
  EXPECT_EQ(refusal({0, -1}, word), "Op: argument 2 (w): expected an unsigned 32-bit integer, got -1");
  EXPECT_EQ(refusal({0}, word), "Op: argument 2 (w): expected an unsigned 32-bit integer; missing");
}

TEST(ArgumentsTest, RefusesWhatIsOfAnotherKind) {
  EXPECT_EQ(refusal({1}, [](const Arguments& arguments) { arguments.flag(0, "f"); }),
            "Op: argument 1 (f): expected true or false, got 1");
  EXPECT_EQ(refusal({true}, [](const Arguments& arguments) { arguments.text(0, "t"); }),
            "Op: argument 1 (t): expected text, got true");
  EXPECT_EQ(refusal({"1.5"}, [](const Arguments& arguments) { arguments.real(0, "r"); }),
            "Op: argument 1 (r): expected a number, got \"1.5\"");
  EXPECT_EQ(refusal({1, 2}, [](const Arguments& arguments) { arguments.at_most(1); }),
            "Op: expected at most 1 argument, got 2");
}

TEST(ArgumentsTest, ReadsRowsGivenBeforeTheCall) {
  const std::string call = "Op";
  const json values = {{{{"name", "A"}, {"celsius", 1.5}}, {{"name", "B"}, {"celsius", -2}}}};
  const std::vector<TEMPERATUREDATA> rows = Arguments(call, values).temperatures_before(0);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].temperature, 1.5F);
  EXPECT_EQ(rows[1].temperature, -2.0F);
  EXPECT_EQ(rows[1].name, "B");
}

TEST(ArgumentsTest, RefusesRowsThatLackAKey) {
  EXPECT_EQ(
      refusal({{{{"name", "A"}}}}, [](const Arguments& arguments) { arguments.temperatures_before(0); }),
      "Op: argument 1 (list): expected an array of {\"name\": text, \"celsius\": number}, got [{\"name\":\"A\"}]");
  EXPECT_EQ(
      refusal({3}, [](const Arguments& arguments) { arguments.fans_before(0); }),
      "Op: argument 1 (list): expected an array of {\"name\": text, \"word1\": number, \"word2\": number}, got 3");
}

TEST(ShortestTest, NamesAFloatByItsShortestDecimal) {
  EXPECT_EQ(shortest(25.3F).dump(), "25.3");
  EXPECT_EQ(shortest(-0.1F).dump(), "-0.1");
  EXPECT_EQ(shortest(16777216.0F).dump(), "16777216.0");
  EXPECT_EQ(shortest(std::numeric_limits<float>::infinity()).dump(), "null");
  EXPECT_EQ(shortest(std::nanf("")).dump(), "null");
}

}  // namespace
}  // namespace host
